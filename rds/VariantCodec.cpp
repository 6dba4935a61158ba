#include "rds/VariantCodec.h"

#include "data/Utf16.h"
#include "rds/tablegram/TablegramReader.h"
#include "rds/tablegram/TablegramWriter.h"

#include <algorithm>

namespace quillet::rds {

namespace {

using namespace std::string_view_literals;

constexpr std::uint8_t NotNull = 0x00;
constexpr std::uint8_t IsNull = 0x01;

/// Success codes have no EXCEPINFO, but for this one (MS-ADTG 2.2.1.4): rows were in conflict.
constexpr std::uint32_t ErrorsOccurred = 0x00040EDA;

bool hasDetails(std::uint32_t scode) noexcept {
    return (scode & 0x80000000U) != 0 || scode == ErrorsOccurred;
}

/// How the elements of an array are described (MS-ADTG 2.2.1.7).
struct ElementForm {
    std::uint16_t features; ///< the SAFEARRAY's
    std::uint32_t size;     ///< bytes in memory
    std::size_t least;      ///< bytes that an element takes on the wire at least
};

ElementForm formOf(VarType type) {
    constexpr std::uint16_t HasType = 0x0080;
    constexpr std::uint16_t Strings = 0x0100;
    constexpr std::uint16_t Unknowns = 0x0200;
    constexpr std::uint16_t Dispatches = 0x0400;
    constexpr std::uint16_t Variants = 0x0800;
    switch (type) {
    case VarType::Empty:
    case VarType::Null:
        return {HasType, 0, 0};
    case VarType::I2:
    case VarType::Bool:
        return {HasType, 2, 2};
    case VarType::I4:
    case VarType::R4:
    case VarType::Error:
        return {HasType, 4, 4};
    case VarType::R8:
    case VarType::Currency:
    case VarType::Date:
        return {HasType, 8, 8};
    case VarType::BStr:
        return {HasType | Strings, 4, 5};
    case VarType::Dispatch:
        return {HasType | Dispatches, 4, 1};
    case VarType::Unknown:
        return {HasType | Unknowns, 4, 1};
    case VarType::Variant:
        return {HasType | Variants, 16, 2};
    case VarType::Decimal:
        return {HasType, 16, 16};
    case VarType::UI1:
        return {HasType, 1, 1};
    }
    throw badReply("an array has elements of the type " +
                   std::to_string(static_cast<unsigned>(type)));
}

/// The rows of a recordset as the tablegram writer takes them.
class RecordsetRows : public data::Cursor {
public:
    explicit RecordsetRows(data::Recordset& recordset) : recordset_(recordset) {
        if (recordset_.RecordCount() > 0)
            recordset_.MoveFirst();
    }
    ~RecordsetRows() override {
        if (recordset_.RecordCount() > 0)
            recordset_.MoveFirst();
    }
    RecordsetRows(const RecordsetRows&) = delete;
    RecordsetRows& operator=(const RecordsetRows&) = delete;

    const data::FieldList& fields() const override { return recordset_.Fields(); }
    bool next() override {
        if (started_)
            recordset_.MoveNext();
        started_ = true;
        return !recordset_.Eof();
    }
    data::Value value(std::size_t column) const override { return recordset_.Item(column); }

private:
    data::Recordset& recordset_;
    bool started_ = false;
};

void write(const BStr& value, ByteWriter& out) {
    if (!value.text || value.text->empty()) {
        out.u32(0);
        out.u8(value.text ? NotNull : IsNull);
        return;
    }
    const std::size_t prefix = out.size();
    out.u32(0);
    out.patchU32(prefix, static_cast<std::uint32_t>(out.utf16(*value.text)));
}

void write(const ScodeError& error, ByteWriter& out) {
    out.u32(error.scode);
    if (!hasDetails(error.scode))
        return;
    out.u32(error.innerScode);
    write(error.source, out);
    write(error.description, out);
    write(error.helpFile, out);
}

void write(const Decimal& value, ByteWriter& out) {
    out.u16(0);
    out.u8(value.scale);
    out.u8(value.negative ? 0x80 : 0x00);
    out.u32(value.high);
    out.u32(value.low);
    out.u32(value.mid);
}

/// Without the type code.
void write(const Dispatch& value, ByteWriter& out) {
    if (!value.recordset || !value.recordset->IsOpen()) {
        out.u8(IsNull);
        return;
    }
    out.bytes(recordsetHead().substr(2));
    RecordsetRows rows(*value.recordset);
    TablegramMetadata metadata = describe(rows.fields());
    metadata.rowCount = static_cast<std::uint32_t>(value.recordset->RecordCount());
    TablegramWriter writer([&out](std::string_view bytes) { out.bytes(bytes); }, metadata);
    while (rows.next())
        writer.writeRow(rows);
    writer.finish();
}

void write(const VariantArray& array, ByteWriter& out);

/// Without the type code.
void writeContent(const Variant& value, ByteWriter& out) {
    struct Writer {
        ByteWriter& out;
        void operator()(Empty /*nothing*/) const {}
        void operator()(Null /*nothing*/) const {}
        void operator()(std::int16_t number) const { out.i16(number); }
        void operator()(std::int32_t number) const { out.i32(number); }
        void operator()(float number) const { out.r4(number); }
        void operator()(double number) const { out.r8(number); }
        void operator()(Currency number) const { out.i64(number.scaled); }
        void operator()(Date date) const { out.r8(date.days); }
        void operator()(bool value) const { out.u16(value ? 0xFFFF : 0); }
        void operator()(std::uint8_t number) const { out.u8(number); }
        void operator()(const BStr& text) const { write(text, out); }
        void operator()(const Dispatch& object) const { write(object, out); }
        void operator()(const ScodeError& error) const { write(error, out); }
        void operator()(const Decimal& number) const { write(number, out); }
        void operator()(const VariantArray& array) const { write(array, out); }
    };
    std::visit(Writer{out}, value);
}

void write(const VariantArray& array, ByteWriter& out) {
    if (array.isNull) {
        out.u8(IsNull);
        return;
    }
    const ElementForm form = formOf(array.elementType);
    out.u8(NotNull);
    out.u16(static_cast<std::uint16_t>(array.dimensions.size()));
    out.u16(form.features);
    out.u32(form.size);
    for (const VariantArray::Dimension& dimension : array.dimensions) {
        out.u32(dimension.count);
        out.i32(dimension.lowerBound);
    }
    // The only object there is stands in arrays of either interface.
    const VarType valueType =
        array.elementType == VarType::Unknown ? VarType::Dispatch : array.elementType;
    for (const Variant& element : array.elements) {
        if (array.elementType == VarType::Variant) {
            encodeValue(element, out);
        } else if (element.isArray() || element.type() != valueType) {
            throw data::Error(data::number::TypeMismatch,
                              "An array has an element of another type.");
        } else {
            writeContent(element, out);
        }
    }
}

} // namespace

std::string_view recordsetHead() {
    return "\x09\x00\x00"
           "\x35\x05\x00\x00\x00\x00\x10\x00\x80\x00\x00\xAA\x00\x6D\x2E\xA4"
           "\xB6\x92\xF2\x3F\x04\xB2\xCF\x11\x8D\x23\x00\xAA\x00\x5F\xFE\x58"sv;
}

void encodeValue(const Variant& value, ByteWriter& out) {
    out.u16(value.typeCode());
    writeContent(value, out);
}

void VariantDecoder::takeFromBudget(std::size_t values) {
    if (values > valuesLeft_)
        throw badReply("it has more values than its bytes justify");
    valuesLeft_ -= values;
}

Variant VariantDecoder::next() {
    takeFromBudget(1);
    return value(0);
}

Variant VariantDecoder::value(int depth) {
    const std::uint16_t code = in_.u16();
    if ((code & ArrayFlag) != 0)
        return Variant(array(static_cast<VarType>(code & ~ArrayFlag), depth));
    return scalar(static_cast<VarType>(code));
}

Variant VariantDecoder::scalar(VarType type) {
    switch (type) {
    case VarType::Empty:
        return Variant(Empty{});
    case VarType::Null:
        return Variant(Null{});
    case VarType::I2:
        return Variant(in_.i16());
    case VarType::I4:
        return Variant(in_.i32());
    case VarType::R4:
        return Variant(in_.r4());
    case VarType::R8:
        return Variant(in_.r8());
    case VarType::Currency:
        return Variant(Currency{in_.i64()});
    case VarType::Date:
        return Variant(Date{in_.r8()});
    case VarType::BStr:
        return Variant(string());
    case VarType::Dispatch:
        return Variant(dispatch());
    case VarType::Error:
        return Variant(error());
    case VarType::Bool:
        return Variant(in_.u16() != 0);
    case VarType::Decimal:
        return Variant(decimal());
    case VarType::UI1:
        return Variant(in_.u8());
    case VarType::Variant:
    case VarType::Unknown:
        break;
    }
    throw badReply("a value has the type " + std::to_string(static_cast<unsigned>(type)));
}

BStr VariantDecoder::string() {
    const std::size_t size = in_.u32();
    if (size == 0)
        return in_.u8() == IsNull ? BStr{} : BStr{""};
    if (size % 2 != 0)
        throw badReply("a string has an odd number of bytes");
    const std::string_view wide = in_.bytes(size);
    std::string text(size / 2 * 3, '\0');
    text.resize(data::utf16LeToUtf8(wide.data(), size / 2, text.data()));
    text.shrink_to_fit();
    return BStr{std::move(text)};
}

ScodeError VariantDecoder::error() {
    ScodeError result;
    result.scode = in_.u32();
    if (hasDetails(result.scode)) {
        result.innerScode = in_.u32();
        result.source = string();
        result.description = string();
        result.helpFile = string();
    }
    return result;
}

Decimal VariantDecoder::decimal() {
    Decimal result;
    in_.skip(2);
    result.scale = in_.u8();
    result.negative = in_.u8() != 0;
    result.high = in_.u32();
    result.low = in_.u32();
    result.mid = in_.u32();
    if (result.scale > 28)
        throw badReply("a decimal number has a scale over 28");
    return result;
}

Dispatch VariantDecoder::dispatch() {
    if (in_.u8() != NotNull)
        return {};
    in_.skip(32); // interface and implementation; the tablegram says itself what it is
    return Dispatch{std::make_shared<data::Recordset>(readTablegram(in_))};
}

VariantArray VariantDecoder::array(VarType elementType, int depth) {
    if (depth >= MaxDepth)
        throw badReply("arrays are nested over " + std::to_string(MaxDepth) + " deep");
    const ElementForm form = formOf(elementType);
    VariantArray result;
    result.elementType = elementType;
    result.isNull = in_.u8() != NotNull;
    if (result.isNull)
        return result;
    const std::size_t dimensions = in_.u16();
    in_.skip(2 + 4); // features and size tell nothing that the type does not
    if (dimensions == 0)
        throw badReply("an array has no dimension");
    if (dimensions * 8 > in_.remaining())
        in_.failCutShort();
    result.dimensions.resize(dimensions);
    for (VariantArray::Dimension& dimension : result.dimensions) {
        dimension.count = in_.u32();
        dimension.lowerBound = in_.i32();
    }
    if (form.least == 0)
        return result; // arrays of Empty and Null have no elements on the wire

    const auto isEmpty = [](VariantArray::Dimension dimension) { return dimension.count == 0; };
    std::uint64_t count =
        std::none_of(result.dimensions.begin(), result.dimensions.end(), isEmpty) ? 1 : 0;
    for (const VariantArray::Dimension& dimension : result.dimensions) {
        count *= dimension.count; // both below 2^32: the product of the others is checked
        if (count > in_.remaining() / form.least)
            in_.failCutShort();
    }
    takeFromBudget(static_cast<std::size_t>(count));
    result.elements.reserve(static_cast<std::size_t>(count));
    for (std::uint64_t i = 0; i < count; ++i) {
        result.elements.push_back(elementType == VarType::Variant   ? value(depth + 1)
                                  : elementType == VarType::Unknown ? Variant(dispatch())
                                                                    : scalar(elementType));
    }
    return result;
}

} // namespace quillet::rds
