#pragma once

#include "app/ReceiveView.h"
#include "sync/OwedSettings.h"
#include "sync/Run.h"
#include "sync/StoreSafeguard.h"

#include <cstdint>

namespace quillet::app {

/// What the start button does: receives the ticked groups in their fixed order, then hands what
/// they collected to the store in one transaction. After a success it sweeps the rows that no
/// longer came, and receives the store's own settings.
///
/// Until something is written, the run ends where it is when a person wants the end: no text is
/// shown then, nothing is logged, and the result is Failed.
class RunDriver {
public:
    enum class Result : std::int16_t {
        Failed = 0,          ///< the status line says what; nothing was written
        Received = 1,        ///< the window closes
        NothingToReceive = 2 ///< said in a message box; the window closes
    };

    RunDriver(sync::Run& run, ReceiveView& view);

    Result receive();

private:
    bool knowStamps();
    bool collect();
    bool prepareBatch();
    Result execute();
    void takeFailureDown();
    void receiveStoreSettings();
    bool fail(const char* text);

    sync::Run& run_;
    ReceiveView& view_;
    sync::StoreSafeguard safeguard_;
    sync::OwedSettings owedSettings_;
};

} // namespace quillet::app
