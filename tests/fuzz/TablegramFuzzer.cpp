#include "data/Error.h"
#include "rds/VariantCodec.h"
#include "rds/tablegram/TablegramReader.h"
#include "tests/fuzz/Finding.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

// Any bytes as a tablegram. One that is read can be written, and what is written reads as the same.

namespace {

using namespace quillet;
using Kind = data::Value::Kind;

std::shared_ptr<data::Recordset> read(std::string_view bytes) {
    try {
        rds::ByteReader in(bytes);
        return std::make_shared<data::Recordset>(rds::readTablegram(in));
    } catch (const data::Error&) {
        return nullptr;
    }
}

std::optional<std::string> write(const std::shared_ptr<data::Recordset>& recordset) {
    rds::ByteWriter out;
    try {
        rds::encodeValue(rds::Variant(rds::Dispatch{recordset}), out);
    } catch (const data::Error&) {
        return std::nullopt; // for example a number that its column cannot hold
    }
    return std::string(out.view().substr(rds::recordsetHead().size()));
}

/// Writing puts a number into its column's scale, and a letter that the code page lacks into "?".
bool maySettle(const data::Value& value) {
    return value.kind() == Kind::Decimal ||
           (value.kind() == Kind::Text &&
            value.bytes().find("\xEF\xBF\xBD") != std::string_view::npos);
}

bool sameCell(const data::Value& a, const data::Value& b) {
    if (a.kind() != b.kind() || a.toText() != b.toText())
        return false;
    return a.kind() != Kind::DateTime || a.asDateTime() == b.asDateTime();
}

void expectSame(data::Recordset& a, data::Recordset& b, bool settled) {
    if (a.RecordCount() != b.RecordCount() || a.Fields().size() != b.Fields().size())
        fuzz::finding("rows or columns are lost in writing");
    for (; !a.Eof(); a.MoveNext(), b.MoveNext()) {
        for (std::size_t column = 0; column < a.Fields().size(); ++column) {
            if (a.Fields()[column].Name != b.Fields()[column].Name)
                fuzz::finding("a column's name changes in writing");
            const data::Value before = a.Item(column);
            if (!sameCell(before, b.Item(column)) && (settled || !maySettle(before)))
                fuzz::finding("'" + before.toText() + "' becomes '" + b.Item(column).toText() +
                              "' in a column of type " +
                              std::to_string(static_cast<int>(a.Fields()[column].Type)));
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    std::shared_ptr<data::Recordset> recordset;
    {
        const fuzz::MemoryBound bound(size);
        recordset = read(input);
    }
    if (recordset == nullptr)
        return 0;
    for (int round = 0; round < 2; ++round) {
        const std::optional<std::string> written = write(recordset);
        if (!written)
            return 0;
        const std::shared_ptr<data::Recordset> again = read(*written);
        if (again == nullptr)
            fuzz::finding("what is written cannot be read");
        expectSame(*recordset, *again, round > 0);
        recordset = again;
        if (recordset->RecordCount() > 0)
            recordset->MoveFirst();
    }
    return 0;
}
