#include "tests/rds/Vectors.h"

#include "tests/support/Hex.h"

namespace quillet::tests::vectors {

std::string queryRequest() {
    return bytes(
        "'ADCClientVersion:01.06' 0D0A 'Content-Type: multipart/mixed; boundary=my)hwzm=z(' "
        "'(.y,.e=odd; num-args=2' 0D0A0D0A '--my)hwzm=z((.y,.e=odd' 0D0A "
        "'Content-Type: application/x-varg' 0D0A 'Content-Length: 524' 0D0A0D0A08003E010000 "
        "u'SHAPE {SELECT CUSTOMERID, COMPANYNAME FROM Custome' "
        "u'rs} APPEND({SELECT ORDERID, CUSTOMERID, ORDERDATE ' "
        "u'FROM Orders} RELATE CUSTOMERID TO CUSTOMERID) AS C' u'ustOrders' 0800C2000000 "
        "u'Provider=' 2700 u'SQLOLEDB' 2700 u';Integrated Security=' 2700 u'SSPI' 2700 "
        "u';Data Source = wdg111; Initial Catalog=' 2700 u'Northwind' 27003B000D0A "
        "'--my)hwzm=z((.y,.e=odd--' 0D0A");
}

std::string providerErrorReply() {
    return bytes("'Content-Type: application/x-varg' 0D0A 'Content-Length: 6' "
                 "0D0A0D0A0A00090002807A0E0A802000 0000 u'ADODB.Connectionv' 0000 "
                 "u'Provider cannot be found. It may not be properly i' u'nstalled.' 0000000001");
}

std::string synchronizeReply() {
    return bytes(
        "'Content-Type: multipart/mixed; boundary=+valdu0:d=' '(-pr/van?2; num-args=7' 0D0A0D0A "
        "'--+valdu0:d=(-pr/van?2' 0D0A 'Content-Type: application/x-varg' "
        "0D0A0D0A0C2000010080081000000002 000000000000000A00DA0E0400000000 "
        "00000000000100000000010000000001 0C200001008008100000000100000000 "
        "0000000C200001008008100000000B00 0000000000000300380E048003002000 000008004C000000 "
        "u'{3FF292B6-B204-11CF-8D23-00AA005FFE58}' 00000300000000000300090400000800 BA000000 "
        "u'Row cannot be located for updating. Some values ma' "
        "u'y have been changed since it was last read.' 00000300000000000800000000000108 "
        "002E000000 u'Microsoft Cursor Engine' 0D0A '--+valdu0:d=(-pr/van?2' 0D0A "
        "'Content-Type: application/x-varg' 0D0A 'Content-Length: 2' 0D0A0D0A00000D0A "
        "'--+valdu0:d=(-pr/van?2' 0D0A 'Content-Type: application/x-varg' "
        "0D0A0D0A032000010080000400000002 0000000000000007000000040000000D 0A "
        "'--+valdu0:d=(-pr/van?2' 0D0A 'Content-Type: application/x-varg' 0D0A0D0A0900010D0A "
        "'--+valdu0:d=(-pr/van?2' 0D0A 'Content-Type: application/x-varg' 0D0A "
        "'Content-Length: 6' 0D0A0D0A0000000000000D0A '--+valdu0:d=(-pr/van?2' 0D0A "
        "'Content-Type: application/x-varg' 0D0A0D0A0A00DA0E0400000000000000 "
        "000001000000000100000000010D0A '--+valdu0:d=(-pr/van?2--' 0D0A");
}

std::string executeRequest() {
    return bytes(
        "'ADCClientVersion:01.06' 0D0A 'Content-Type: multipart/mixed; boundary=dd+dyynum0' "
        "'ud9:6oo?,g; num-args=10' 0D0A0D0A '--dd+dyynum0ud9:6oo?,g' 0D0A "
        "'Content-Type: application/x-varg' 0D0A 'Content-Length: 617' "
        "0D0A0D0A000003000904000000000300 04000000000008004A010000 "
        "u'Command Time Out=~30;Batch Size=~15;Update Criteri' "
        "u'a=~2;Background Fetch Size=~15;Initial Fetch Size=' "
        "u'~50;Background thread Priority=~3;Auto Recalc=~1;U' u'pdate Resync=~1' "
        "03000300000008003C000000 u'Select top 1 * from Publishers' 080000000000000800B2000000 "
        "u'Provider=sqloledb;Data Source=bradrhod1;User ID=ol' "
        "u'edb;Password=*****;Initial Catalog=pubs' 0D0A '--dd+dyynum0ud9:6oo?,g--' 0D0A");
}

std::string executeReply() {
    return bytes(
        "'Content-Type: multipart/mixed; boundary=dd+dyynum0' 'ud9:6oo?,g; num-args=10' 0D0A0D0A "
        "'--dd+dyynum0ud9:6oo?,g' 0D0A 'Content-Type: application/x-varg' 0D0A "
        "'Content-Length: 20' 0D0A0D0A000000000000000000000000 00000000000000000D0A "
        "'--dd+dyynum0ud9:6oo?,g' 0D0A 'Content-Type: application/x-varg' "
        "0D0A0D0A090000350500000000100080 0000AA006D2EA4B692F23F04B2CF118D "
        "2300AA005FFE58010754472100000000 021900B692F23F04B2CF118D2300AA00 "
        "5FFE58010000000000000300036700D2 AD63F602EBCF11B0E300AA003F000F00 "
        "00000500050000000100000001000000 0100C13C8EB6EB6DD0118DF600AA005F "
        "FE5807000B0000000400010000001300 00000400010000000D00000000000E00 "
        "000000000F0000000000100000000000 120000000000107C000200BE22B5C8F3 5CCE11ADE500AA00 'Dw=' "
        "04007F0000000200FFFF860000000200 FFFF2200000004001E00000049000000 "
        "040000000000C13C8EB6EB6DD0118DF6 00AA005FFE5805000400000004000F00 "
        "00000500000004000200000003000000 04000F00000007000000040032000000 "
        "08000000040003000000054A00010014 002200 u'pubs' 22002E002E002200 u'Publishers' 22000A00 "
        "u'Publishers' 0000050001000100064500F201000100 0600 u'pub_id' 010001000600 u'pub_id' "
        "810004000000FF000000FF0000001880 00000400 u'pubs' 0000FFFF064D00F2010002000800 "
        "u'pub_name' 010002000800 u'pub_name' 810028000000FF000000FF0000006800 00000400 u'pubs' "
        "0000FFFF063D00F2010003000400 u'city' 010003000400 u'city' "
        "810014000000FF000000FF0000006800 00000400 u'pubs' 0000FFFF064100F2010004000500 u'state' "
        "010004000500 u'state' 810002000000FF000000FF0000007800 00000400 u'pubs' "
        "0000FFFF064900F2010005000700 u'country' 010005000700 u'country' "
        "81001E000000FF000000FF0000006800 00000400 u'pubs' 0000FFFF07FF '0736' 0E "
        "'New Moon Books' 08 'New YorkMA' 03 'USA' 0F0D0A '--dd+dyynum0ud9:6oo?,g--' 0D0A");
}

std::string executeErrorReply() {
    return bytes(
        "'Content-Type: multipart/mixed; boundary=qa06besd06' 'poz)906=:,; num-args=10' 0D0A0D0A "
        "'--qa06besd06poz)906=:,' 0D0A 'Content-Type: application/x-varg' "
        "0D0A0D0A0C2000010080081000000002 000000000000000A007A0E0A80000000 "
        "00000000000100000000010000000001 0C200001008008100000000100000000 "
        "0000000C200001008008100000000B00 00000000000003007A0E0A8003007A0E 0A8008004C000000 "
        "u'{0000051A-0000-0010-8000-00AA006D2EA4}' 08004C000000 "
        "u'{00000550-0000-0010-8000-00AA006D2EA4}' 03007C75C14B03000904000008007600 0000 "
        "u'Provider cannot be found. It may not be properly i' u'nstalled.' 08004C000000 "
        "u'{00000550-0000-0010-8000-00AA006D2EA4}' 03004FEE120008003000000043003A00 5C00 u'WINNT' "
        "5C00 u'HELP' 5C00 u'ADO270.CHM' 080020000000 u'ADODB.Connection' 0D0A "
        "'--qa06besd06poz)906=:,' 0D0A 'Content-Type: application/x-varg' 0D0A "
        "'Content-Length: 18' 0D0A0D0A000000000000000000000000 0000000000000D0A "
        "'--qa06besd06poz)906=:,' 0D0A 'Content-Type: application/x-varg' 0D0A0D0A0900010D0A "
        "'--qa06besd06poz)906=:,--' 0D0A");
}

std::string getsqlRequest() {
    return bytes(
        "'ADCClientVersion:01.06' 0D0A 'Content-Type: multipart/mixed; boundary=abcdefghij' "
        "'0123456789; num-args=5' 0D0A0D0A '--abcdefghij0123456789' 0D0A "
        "'Content-Type: application/x-varg' 0D0A 'Content-Length: 52' 0D0A0D0A08000A000000 u'P1|' "
        "5CD500AE000002000100020000000800 14000000 u'SQL-ID-001' 0D0A '--abcdefghij0123456789--' "
        "0D0A");
}

std::string getsqlRequestWithLongs() {
    return bytes(
        "'ADCClientVersion:01.06' 0D0A 'Content-Type: multipart/mixed; boundary=abcdefghij' "
        "'0123456789; num-args=5' 0D0A0D0A '--abcdefghij0123456789' 0D0A "
        "'Content-Type: application/x-varg' 0D0A 'Content-Length: 56' 0D0A0D0A08000A000000 u'P1|' "
        "5CD500AE000003000100000003000000 0000080014000000 u'SQL-ID-001' 0D0A "
        "'--abcdefghij0123456789--' 0D0A");
}

std::string recordsetReply() {
    return bytes(
        "'Content-Type: multipart/mixed; boundary=abcdefghij' '0123456789; num-args=5' 0D0A0D0A "
        "'--abcdefghij0123456789' 0D0A 'Content-Type: application/x-varg' 0D0A "
        "'Content-Length: 10' 0D0A0D0A000000000000000000000D0A '--abcdefghij0123456789' 0D0A "
        "'Content-Type: application/x-varg' 0D0A0D0A090000350500000000100080 "
        "0000AA006D2EA4B692F23F04B2CF118D 2300AA005FFE58010754472100000000 "
        "021900B692F23F04B2CF118D2300AA00 5FFE58010000000000000300036700D2 "
        "AD63F602EBCF11B0E300AA003F000F00 00000700070000000100000003000000 "
        "0100C13C8EB6EB6DD0118DF600AA005F FE5807000B0000000400010000001300 "
        "00000400010000000D00000000000E00 000000000F0000000000100000000000 "
        "120000000000107C000200BE22B5C8F3 5CCE11ADE500AA00 'Dw=' 04007F0000000200FFFF860000000200 "
        "FFFF2200000004001E00000049000000 040000000000C13C8EB6EB6DD0118DF6 "
        "00AA005FFE5805000400000004000F00 00000500000004000200000003000000 "
        "04000F00000007000000040032000000 08000000040003000000053A00010012 002200 u'DB1' "
        "22002E002200 u'dbo' 22002E002200 u'ITEM' 22000400 u'ITEM' "
        "0000060001000100064300F301000100 0400 u'CODE' 010001000400 u'CODE' "
        "810003000000FF000000FF0000001880 00000300 u'DB1' 0300 u'dbo' "
        "0000FFFF064300F3010002000400 u'NAME' 010002000400 u'NAME' "
        "810014000000FF000000FF0000006800 00000300 u'DB1' 0300 u'dbo' "
        "0000FFFF063F00F3010003000300 u'QTY' 010003000300 u'QTY' 0300040000000A000000FF0000007800 "
        "00000300 u'DB1' 0300 u'dbo' 0000FFFF063F00F3010004000300 u'AMT' 010004000300 u'AMT' "
        "83001300000009000000020000007800 00000300 u'DB1' 0300 u'dbo' "
        "0000FFFF064700F3010005000500 u'REGDT' 010005000500 u'REGDT' "
        "87001000000017000000030000007800 00000300 u'DB1' 0300 u'dbo' "
        "0000FFFF064300F3010006000400 u'MEMO' 010006000400 u'MEMO' "
        "8200C8000000FF000000FF0000006800 00000300 u'DB1' 0300 u'dbo' "
        "0000FFFF06270080010007000500 u'TOTAL' 0500080000000F000000FF0000007000 00000000FFFF07FF "
        "'A01' 04C7D1B1DB0500000009020187D61200 000000000000000000000000D6070700 "
        "060016002B000700C0D4540704000000 54BAA8BA000000000000F83F07 '+B02' "
        "09020005000000000000000000000000 0000000000000007D743303300FFFFFF "
        "FFCF070C001F0017003B003A00000000 00000000000000D0BF0F0D0A '--abcdefghij0123456789--' "
        "0D0A");
}

std::string recordsetReplyWithStrings() {
    return bytes(
        "'Content-Type: multipart/mixed; boundary=abcdefghij' '0123456789; num-args=5' 0D0A0D0A "
        "'--abcdefghij0123456789' 0D0A 'Content-Type: application/x-varg' 0D0A "
        "'Content-Length: 48' 0D0A0D0A08000A000000 u'P1|' 5CD500AE000000000000080014000000 "
        "u'SQL-ID-001' 0D0A '--abcdefghij0123456789' 0D0A 'Content-Type: application/x-varg' "
        "0D0A0D0A090000350500000000100080 0000AA006D2EA4B692F23F04B2CF118D "
        "2300AA005FFE58010754472100000000 021900B692F23F04B2CF118D2300AA00 "
        "5FFE58010000000000000300036700D2 AD63F602EBCF11B0E300AA003F000F00 "
        "00000700070000000100000003000000 0100C13C8EB6EB6DD0118DF600AA005F "
        "FE5807000B0000000400010000001300 00000400010000000D00000000000E00 "
        "000000000F0000000000100000000000 120000000000107C000200BE22B5C8F3 5CCE11ADE500AA00 'Dw=' "
        "04007F0000000200FFFF860000000200 FFFF2200000004001E00000049000000 "
        "040000000000C13C8EB6EB6DD0118DF6 00AA005FFE5805000400000004000F00 "
        "00000500000004000200000003000000 04000F00000007000000040032000000 "
        "08000000040003000000053A00010012 002200 u'DB1' 22002E002200 u'dbo' 22002E002200 u'ITEM' "
        "22000400 u'ITEM' 0000060001000100064300F301000100 0400 u'CODE' 010001000400 u'CODE' "
        "810003000000FF000000FF0000001880 00000300 u'DB1' 0300 u'dbo' "
        "0000FFFF064300F3010002000400 u'NAME' 010002000400 u'NAME' "
        "810014000000FF000000FF0000006800 00000300 u'DB1' 0300 u'dbo' "
        "0000FFFF063F00F3010003000300 u'QTY' 010003000300 u'QTY' 0300040000000A000000FF0000007800 "
        "00000300 u'DB1' 0300 u'dbo' 0000FFFF063F00F3010004000300 u'AMT' 010004000300 u'AMT' "
        "83001300000009000000020000007800 00000300 u'DB1' 0300 u'dbo' "
        "0000FFFF064700F3010005000500 u'REGDT' 010005000500 u'REGDT' "
        "87001000000017000000030000007800 00000300 u'DB1' 0300 u'dbo' "
        "0000FFFF064300F3010006000400 u'MEMO' 010006000400 u'MEMO' "
        "8200C8000000FF000000FF0000006800 00000300 u'DB1' 0300 u'dbo' "
        "0000FFFF06270080010007000500 u'TOTAL' 0500080000000F000000FF0000007000 00000000FFFF07FF "
        "'A01' 04C7D1B1DB0500000009020187D61200 000000000000000000000000D6070700 "
        "060016002B000700C0D4540704000000 54BAA8BA000000000000F83F07 '+B02' "
        "09020005000000000000000000000000 0000000000000007D743303300FFFFFF "
        "FFCF070C001F0017003B003A00000000 00000000000000D0BF0F0D0A '--abcdefghij0123456789--' "
        "0D0A");
}

std::string nothingReply() {
    return bytes(
        "'Content-Type: multipart/mixed; boundary=abcdefghij' '0123456789; num-args=5' 0D0A0D0A "
        "'--abcdefghij0123456789' 0D0A 'Content-Type: application/x-varg' 0D0A "
        "'Content-Length: 10' 0D0A0D0A000000000000000000000D0A '--abcdefghij0123456789' 0D0A "
        "'Content-Type: application/x-varg' 0D0A0D0A0900010D0A '--abcdefghij0123456789--' 0D0A");
}

std::string putsqlRequest() {
    return bytes(
        "'ADCClientVersion:01.06' 0D0A 'Content-Type: multipart/mixed; boundary=abcdefghij' "
        "'0123456789; num-args=3' 0D0A0D0A '--abcdefghij0123456789' 0D0A "
        "'Content-Type: application/x-varg' 0D0A 'Content-Length: 19' "
        "0D0A0D0A080000000000000800060000 00 u'DB1' 0D0A '--abcdefghij0123456789' 0D0A "
        "'Content-Type: application/x-varg' 0D0A0D0A082000010080010400000003 "
        "0000000000000010000000 u'insert A' 0000000000040000005CD500AE0D0A "
        "'--abcdefghij0123456789--' 0D0A");
}

std::string putsqlReplyTrue() {
    return bytes(
        "'Content-Type: multipart/mixed; boundary=abcdefghij' '0123456789; num-args=3' 0D0A0D0A "
        "'--abcdefghij0123456789' 0D0A 'Content-Type: application/x-varg' 0D0A "
        "'Content-Length: 24' 0D0A0D0A0800040000004F004B000800 06000000 u'DB1' 00000D0A "
        "'--abcdefghij0123456789' 0D0A 'Content-Type: application/x-varg' 0D0A0D0A0B00FFFF0D0A "
        "'--abcdefghij0123456789--' 0D0A");
}

std::string putsqlReplyFalse() {
    return bytes(
        "'Content-Type: multipart/mixed; boundary=abcdefghij' '0123456789; num-args=3' 0D0A0D0A "
        "'--abcdefghij0123456789' 0D0A 'Content-Type: application/x-varg' 0D0A "
        "'Content-Length: 32' 0D0A0D0A08000E000000 u'ERR 100' 080006000000 u'DB1' 0D0A "
        "'--abcdefghij0123456789' 0D0A 'Content-Type: application/x-varg' "
        "0D0A0D0A082000010080010400000003 0000000000000010000000 u'insert A' "
        "0000000000040000005CD500AE0D0A '--abcdefghij0123456789' 0D0A "
        "'Content-Type: application/x-varg' 0D0A0D0A0B0000000D0A '--abcdefghij0123456789--' 0D0A");
}

std::string objectErrorReply() {
    return bytes("'Content-Type: application/x-varg' 0D0A 'Content-Length: 6' "
                 "0D0A0D0A0A00090002807A0E0A801600 0000 u'some.object' 04000000E4C228D30000000001");
}

std::string pingRequest() {
    return bytes(
        "'ADCClientVersion:01.06' 0D0A 'Content-Type: multipart/mixed; boundary=abcdefghij' "
        "'0123456789; num-args=0' 0D0A0D0A '--abcdefghij0123456789--' 0D0A");
}

std::string pingReply() {
    return bytes(
        "'Content-Type: multipart/mixed; boundary=abcdefghij' '0123456789; num-args=0' 0D0A0D0A "
        "'--abcdefghij0123456789' 0D0A 'Content-Type: application/x-varg' 0D0A0D0A080008000000 "
        "u'PONG' 0D0A '--abcdefghij0123456789--' 0D0A");
}

} // namespace quillet::tests::vectors
