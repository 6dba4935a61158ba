#pragma once

#include "sync/Run.h"

namespace quillet::receivers {

/// Brings the dishes of all courses, of products that are not discontinued and whose category the
/// stores show, and marks them received. Product and dish are looked up as one text, without a
/// separator: pairs that read the same are one.
/// @return the receive result flag.
[[nodiscard]] bool ReceiveCourseMenus(sync::Run& run);

} // namespace quillet::receivers
