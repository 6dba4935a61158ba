#include "tests/rds/Vectors.h"

#include "tests/support/Hex.h"

#include <vector>

namespace quillet::tests::vectors {

namespace {

const std::string Type = "Content-Type: application/x-varg\r\n";

/// A part of which the length is told.
std::string counted(std::string_view data) {
    const std::string content = bytes(data);
    return Type + "Content-Length: " + std::to_string(content.size()) + "\r\n\r\n" + content;
}

/// A part that ends where the next delimiter is.
std::string streamed(std::string_view data) {
    return Type + "\r\n" + bytes(data);
}

constexpr const char* Boundary = "abcdefghij0123456789";

std::string message(int arguments, const std::vector<std::string>& parts,
                    const std::string& boundary = Boundary) {
    std::string body = "Content-Type: multipart/mixed; boundary=" + boundary +
                       "; num-args=" + std::to_string(arguments) + "\r\n\r\n";
    for (const std::string& part : parts)
        body += "--" + boundary + "\r\n" + part + "\r\n";
    return body + "--" + boundary + "--\r\n";
}

std::string request(int arguments, const std::vector<std::string>& parts,
                    const std::string& boundary = Boundary) {
    return "ADCClientVersion:01.06\r\n" + message(arguments, parts, boundary);
}

std::string statementsPart() {
    return streamed("0820000100800104000000030000000000000010000000 u'insert A' 0000000000"
                    "04000000 5CD500AE");
}

/// The three rows of seven columns.
std::string itemsPart() {
    return streamed(
        "0900003505000000001000800000AA006D2EA4B692F23F04B2CF118D2300AA005FFE580107"
        "'TG!' 00000000021900B692F23F04B2CF118D2300AA005FFE58010000000000000300036700D2AD63F602EB"
        "CF11B0E300AA003F000F00000007000700000001000000030000000100C13C8EB6EB6DD0118DF600AA005FFE"
        "5807000B000000040001000000130000000400010000000D00000000000E00000000000F0000000000100000"
        "000000120000000000107C000200BE22B5C8F35CCE11ADE500AA00 'Dw=' 04007F0000000200FFFF86000000"
        "0200FFFF2200000004001E00000049000000040000000000C13C8EB6EB6DD0118DF600AA005FFE5805000400"
        "000004000F000000050000000400020000000300000004000F00000007000000040032000000080000000400"
        "03000000053A0001001200 u'\"DB1\".\"dbo\".\"ITEM\"' 0400 u'ITEM' 0000060001000100064300F3"
        "010001000400 u'CODE' 010001000400 u'CODE' 810003000000FF000000FF000000188000000300 u'DB1'"
        "0300 u'dbo' 0000FFFF064300F3010002000400 u'NAME' 010002000400 u'NAME' 810014000000FF0000"
        "00FF000000680000000300 u'DB1' 0300 u'dbo' 0000FFFF063F00F3010003000300 u'QTY' 0100030003"
        "00 u'QTY' 0300040000000A000000FF000000780000000300 u'DB1' 0300 u'dbo' 0000FFFF063F00F301"
        "0004000300 u'AMT' 010004000300 u'AMT' 8300130000000900000002000000780000000300 u'DB1' 03"
        "00 u'dbo' 0000FFFF064700F3010005000500 u'REGDT' 010005000500 u'REGDT' 870010000000170000"
        "0003000000780000000300 u'DB1' 0300 u'dbo' 0000FFFF064300F3010006000400 u'MEMO' 0100060004"
        "00 u'MEMO' 8200C8000000FF000000FF000000680000000300 u'DB1' 0300 u'dbo' 0000FFFF0627008001"
        "0007000500 u'TOTAL' 0500080000000F000000FF000000700000000000FFFF07FF 'A01' 04C7D1B1DB0500"
        "000009020187D61200000000000000000000000000D6070700060016002B000700C0D454070400000054BAA8"
        "BA000000000000F83F07 '+B02' 090200050000000000000000000000000000000000000007D7 'C03' 00FF"
        "FFFFFFCF070C001F0017003B003A0000000000000000000000D0BF0F");
}

} // namespace

std::string queryRequest() {
    return request(
        2,
        {counted(
            "08003E010000 u'SHAPE {SELECT CUSTOMERID, COMPANYNAME FROM Customers} APPEND({SE'"
            "u'LECT ORDERID, CUSTOMERID, ORDERDATE FROM Orders} RELATE CUSTOMERID TO CUSTOMERID) AS C'"
            "u'ustOrders' 0800C2000000 u'Provider=' 2700 u'SQLOLEDB' 2700 u';Integrated Security=' 27"
            "00 u'SSPI' 2700 u';Data Source = wdg111; Initial Catalog=' 2700 u'Northwind' 27003B00")},
        "my)hwzm=z((.y,.e=odd");
}

std::string providerErrorReply() {
    return Type + "Content-Length: 6\r\n\r\n" +
           bytes("0A00090002807A0E0A8020000000 u'ADODB.Connectionv' 0000 u'Provider can'"
                 "u'not be found. It may not be properly installed.' 0000000001");
}

std::string synchronizeReply() {
    return message(
        7,
        {streamed(
             "0C2000010080081000000002000000000000000A00DA0E0400000000000000000001000000000100"
             "000000010C2000010080081000000001000000000000000C200001008008100000000B000000000000000300"
             "380E048003002000000008004C000000 u'{3FF292B6-B204-11CF-8D23-00AA005FFE58}' 00000300000000"
             "000300090400000800BA000000 u'Row cannot be located for updating. Some values may have be'"
             "u'en changed since it was last read.' 00000300000000000800000000000108002E000000"
             "u'Microsoft Cursor Engine'"),
         counted("0000"), streamed("032000010080000400000002000000000000000700000004000000"),
         streamed("090001"), counted("000000000000"),
         streamed("0A00DA0E040000000000000000000100000000010000000001")},
        "+valdu0:d=(-pr/van?2");
}

std::string executeRequest() {
    return request(
        10,
        {counted(
            "00000300090400000000030004000000000008004A010000 u'Command Time Out=~30;Batch S'"
            "u'ize=~15;Update Criteria=~2;Background Fetch Size=~15;Initial Fetch Size=~50;Background'"
            "u' thread Priority=~3;Auto Recalc=~1;Update Resync=~1' 03000300000008003C000000 u'Select'"
            "u' top 1 * from Publishers' 080000000000000800B2000000 u'Provider=sqloledb;Data Source=b'"
            "u'radrhod1;User ID=oledb;Password=*****;Initial Catalog=pubs'")},
        "dd+dyynum0ud9:6oo?,g");
}

std::string executeReply() {
    return message(
        10,
        {counted("0000000000000000000000000000000000000000"),
         streamed(
             "0900003505000000001000800000AA006D2EA4B692F23F04B2CF118D2300AA005FFE580107 'TG!'"
             "00000000021900B692F23F04B2CF118D2300AA005FFE58010000000000000300036700D2AD63F602EBCF11B0"
             "E300AA003F000F00000005000500000001000000010000000100C13C8EB6EB6DD0118DF600AA005FFE580700"
             "0B000000040001000000130000000400010000000D00000000000E00000000000F0000000000100000000000"
             "120000000000107C000200BE22B5C8F35CCE11ADE500AA00 'Dw=' 04007F0000000200FFFF860000000200FF"
             "FF2200000004001E00000049000000040000000000C13C8EB6EB6DD0118DF600AA005FFE5805000400000004"
             "000F000000050000000400020000000300000004000F00000007000000040032000000080000000400030000"
             "00054A0001001400 u'\"pubs\"..\"Publishers\"' 0A00 u'Publishers' 0000050001000100064500F2"
             "010001000600 u'pub_id' 010001000600 u'pub_id' 810004000000FF000000FF000000188000000400"
             "u'pubs' 0000FFFF064D00F2010002000800 u'pub_name' 010002000800 u'pub_name' 810028000000FF"
             "000000FF000000680000000400 u'pubs' 0000FFFF063D00F2010003000400 u'city' 010003000400"
             "u'city' 810014000000FF000000FF000000680000000400 u'pubs' 0000FFFF064100F2010004000500"
             "u'state' 010004000500 u'state' 810002000000FF000000FF000000780000000400 u'pubs' 0000FFFF"
             "064900F2010005000700 u'country' 010005000700 u'country' 81001E000000FF000000FF0000006800"
             "00000400 u'pubs' 0000FFFF07FF '0736' 0E 'New Moon Books' 08 'New YorkMA' 03 'USA' 0F")},
        "dd+dyynum0ud9:6oo?,g");
}

std::string executeErrorReply() {
    return message(
        10,
        {streamed(
             "0C2000010080081000000002000000000000000A007A0E0A80000000000000000001000000000100"
             "000000010C2000010080081000000001000000000000000C200001008008100000000B000000000000000300"
             "7A0E0A8003007A0E0A8008004C000000 u'{0000051A-0000-0010-8000-00AA006D2EA4}' 08004C000000"
             "u'{00000550-0000-0010-8000-00AA006D2EA4}' 03007C75C14B030009040000080076000000 u'Provide'"
             "u'r cannot be found. It may not be properly installed.' 08004C000000 u'{00000550-0000-00'"
             "u'10-8000-00AA006D2EA4}' 03004FEE1200080030000000 u'C:\\WINNT\\HELP\\ADO270.CHM' 08002000"
             "0000 u'ADODB.Connection'"),
         counted("000000000000000000000000000000000000"), streamed("090001")},
        "qa06besd06poz)906=:,");
}

std::string getsqlRequest() {
    return request(
        5, {counted("08000A000000 u'P1|' 5CD500AE00000200010002000000080014000000 u'SQL-ID-001'")});
}

std::string getsqlRequestWithLongs() {
    return request(5,
                   {counted("08000A000000 u'P1|' 5CD500AE0000030001000000030000000000080014000000 "
                            "u'SQL-ID-001'")});
}

std::string recordsetReply() {
    return message(5, {counted("00000000000000000000"), itemsPart()});
}

std::string recordsetReplyWithStrings() {
    return message(5, {counted("08000A000000 u'P1|' 5CD500AE000000000000080014000000"
                               "u'SQL-ID-001'"),
                       itemsPart()});
}

std::string nothingReply() {
    return message(5, {counted("00000000000000000000"), streamed("090001")});
}

std::string putsqlRequest() {
    return request(3, {counted("08000000000000080006000000 u'DB1'"), statementsPart()});
}

std::string putsqlReplyTrue() {
    return message(3,
                   {counted("080004000000 u'OK' 080006000000 u'DB1' 0000"), streamed("0B00FFFF")});
}

std::string putsqlReplyFalse() {
    return message(3, {counted("08000E000000 u'ERR 100' 080006000000 u'DB1'"), statementsPart(),
                       streamed("0B000000")});
}

std::string objectErrorReply() {
    return Type + "Content-Length: 6\r\n\r\n" +
           bytes("0A00090002807A0E0A8016000000 u'some.object' 04000000E4C228D30000000001");
}

std::string pingRequest() {
    return request(0, {});
}

std::string pingReply() {
    return message(0, {streamed("080008000000 u'PONG'")});
}

} // namespace quillet::tests::vectors
