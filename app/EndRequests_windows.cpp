#include "app/EndRequests.h"

namespace quillet::app {

// A program with windows is asked through them.
struct EndRequests::Source {};

EndRequests::EndRequests(std::function<void()> /*handler*/) {}

EndRequests::~EndRequests() = default;

} // namespace quillet::app
