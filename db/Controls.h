#pragma once

#include <cstdint>
#include <string>

namespace quillet::db {

/// The window's controls as a statement batch sees them. The window stands behind them.

class ProgressBar {
public:
    virtual ~ProgressBar() = default;
    virtual void SetMin(std::int32_t min) = 0;
    virtual void SetMax(std::int32_t max) = 0;
    virtual std::int32_t Value() const = 0;
    virtual void SetValue(std::int32_t value) = 0;
};

class Label {
public:
    virtual ~Label() = default;
    virtual std::string Caption() const = 0;
    virtual void SetCaption(const std::string& caption) = 0;
};

} // namespace quillet::db
