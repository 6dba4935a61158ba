#pragma once

#include <string>

/// HTTP bodies of whole messages. Those of MS-ADTG section 4 were recorded from a database server;
/// the others are of the calls that this system makes.
namespace quillet::tests::vectors {

/// MS-ADTG 4.1, with the zero bytes that its publication lost.
std::string queryRequest();

/// MS-ADTG 4.2.
std::string providerErrorReply();

/// MS-ADTG 4.3.
std::string synchronizeReply();

/// MS-ADTG 4.4.
std::string executeRequest();

/// MS-ADTG 4.5.
std::string executeReply();

/// MS-ADTG 4.6.
std::string executeErrorReply();

/// Getsql("SQL-ID-001", 0, 1, Empty, "P1|한글") with 16-bit integers.
std::string getsqlRequest();

/// The same with 32-bit integers.
std::string getsqlRequestWithLongs();

/// Seven columns, three rows; no argument returned.
std::string recordsetReply();

/// The same with the two strings returned.
std::string recordsetReplyWithStrings();

/// A null object instead of a recordset.
std::string nothingReply();

/// PUTSQL({"insert A", "", "한글"}, "DB1", "").
std::string putsqlRequest();

/// True; the second string has become "OK".
std::string putsqlReplyTrue();

/// False; the second string has become "ERR 100", and the array comes back.
std::string putsqlReplyFalse();

/// An object raised an error of its own.
std::string objectErrorReply();

/// A call without arguments.
std::string pingRequest();

/// Its reply, a string.
std::string pingReply();

} // namespace quillet::tests::vectors
