#include "sync/OwedSettings.h"

namespace quillet::sync {

OwedSettings::OwedSettings(const std::filesystem::path& store)
    : note_(StampNote::beside(store, ".settings-owed.txt"), {"UPD_BAS"}) {}

std::string OwedSettings::since(const std::string& stamp) const {
    if (!note_.exists())
        return stamp;
    const auto noted = note_.read();
    return noted ? StampNote::earlier(stamp, noted->front()) : std::string();
}

void OwedSettings::note(const std::string& stamp) {
    notedHere_ = !note_.exists();
    note_.write({stamp});
}

void OwedSettings::withdraw() const noexcept {
    if (notedHere_)
        note_.remove();
}

} // namespace quillet::sync
