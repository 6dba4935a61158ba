#include "headoffice/admin/LocalTime.h"

namespace quillet::headoffice::admin {

std::tm localTime(std::time_t time) {
    std::tm result{};
    if (::localtime_s(&result, &time) != 0) {
        result = {};
        result.tm_year = 70;
        result.tm_mday = 1;
    }
    return result;
}

} // namespace quillet::headoffice::admin
