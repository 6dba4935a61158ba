#pragma once

#include <string>

namespace quillet::sync {

/// The per-user settings store: texts by application, section and key.
class Settings {
public:
    virtual ~Settings() = default;

    /// The stored text, or the default when the key is absent.
    /// @throws data::Error when there are settings and they cannot be read: they are not absent.
    virtual std::string GetSetting(const std::string& application, const std::string& section,
                                   const std::string& key,
                                   const std::string& defaultValue = "") const = 0;

    /// @throws data::Error when it cannot be saved; everything stored is then as it was.
    virtual void SaveSetting(const std::string& application, const std::string& section,
                             const std::string& key, const std::string& value) = 0;
};

inline constexpr const char* HeadOfficeApplication = "HALDREN";
inline constexpr const char* StoreApplication = "외식업";

/// What says where the head office is and who this counter is: HALDREN, Settings; empty when
/// absent.
inline std::string headOfficeSetting(const Settings& settings, const std::string& key) {
    return settings.GetSetting(HeadOfficeApplication, "Settings", key);
}

} // namespace quillet::sync
