#pragma once

#include "app/ReceiveView.h"
#include "sync/Run.h"
#include "sync/StoreSafeguard.h"

#include <cstdint>

namespace quillet::app {

/// What the start button does: receives the ticked groups in their fixed order, then hands what
/// they collected to the store in one transaction. After a success it sweeps the rows that no
/// longer came, and receives the store's own settings.
class RunDriver {
public:
    enum class Result : std::int16_t {
        Failed = 0,          ///< the status line says what; nothing was written
        Received = 1,        ///< the window closes
        NothingToReceive = 2 ///< said in a message box; the window closes
    };

    RunDriver(sync::Run& run, ReceiveView& view) : run_(run), view_(view) {}

    Result receive();

private:
    bool collect();
    Result execute(sync::StoreSafeguard& safeguard);
    void takeFailureDown();
    void receiveStoreSettings();
    bool fail(const char* text);

    sync::Run& run_;
    ReceiveView& view_;
};

} // namespace quillet::app
