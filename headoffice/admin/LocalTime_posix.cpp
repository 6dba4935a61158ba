#include "headoffice/admin/LocalTime.h"

namespace quillet::headoffice::admin {

std::tm localTime(std::time_t time) {
    std::tm result{};
    result.tm_year = 70;
    result.tm_mday = 1;
    ::localtime_r(&time, &result);
    return result;
}

} // namespace quillet::headoffice::admin
