#pragma once

#include <string>

namespace quillet::sync {

/// The per-user settings store: texts by application, section and key.
class Settings {
public:
    virtual ~Settings() = default;

    /// The stored text, or the default when the key is absent. Never fails.
    virtual std::string GetSetting(const std::string& application, const std::string& section,
                                   const std::string& key,
                                   const std::string& defaultValue = "") const = 0;

    virtual void SaveSetting(const std::string& application, const std::string& section,
                             const std::string& key, const std::string& value) = 0;
};

} // namespace quillet::sync
