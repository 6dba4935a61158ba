#pragma once

#include "headoffice/admin/Activity.h"
#include "headoffice/admin/HealthKeeper.h"
#include "headoffice/admin/Load.h"

#include <string>

namespace quillet::headoffice::admin {

/// What the admin page shows.
struct AdminPageData {
    std::string version; ///< of this program
    HealthKeeper::Health health;
    Load load;
    Activity::Snapshot activity;
    /// All clients and versions on a page that stands still; otherwise the first ones, on a page
    /// that renews itself.
    bool everything = false;
};

/// The page for a person, as one HTML document without scripts and without anything from elsewhere.
/// Whatever came from outside is escaped and cut.
std::string adminPage(const AdminPageData& data);

} // namespace quillet::headoffice::admin
