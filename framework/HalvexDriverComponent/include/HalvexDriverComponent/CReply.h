#pragma once

#include <HalvexDriverComponent/Export.h>
#include <HalvexDriverComponent/Halvex.h>

#include <functional>
#include <optional>

class CChannel;

// The answer that somebody waits for: made by the waiting side, completed once by the engine that carries
// out the request. It is made with new and frees itself when both sides have ended their use:
// - the waiting side ends it with wait(), notify() or release(), one call of one of them (but see notify);
// - a driver that takes the reply over calls addRefer(); its use ends with setRefer(), or, when
//   replyed() says that nobody waits any more, with delete.
// A reply that its driver never completes is freed with the channel that it was made for, and whoever
// still waits then gets ChannelError.
// Threads: any; the waiting side may give up at the very moment the engine completes.
class HALVEXDRIVERCOMPONENT_EXPORT CReply {
public:
    // `channel` may be null: then nobody but the driver can free what the driver took over.
    explicit CReply(CChannel* channel = nullptr);
    CReply(const CReply&) = delete;
    CReply& operator=(const CReply&) = delete;
    virtual ~CReply();

    // For the driver.
    void addRefer();
    // The waiting side is gone. Once true it stays true.
    bool replyed() const;
    // Completes the reply. With Success the result is what errorResult holds. The reply may be gone
    // afterwards.
    void setRefer(Halvex::DriverErrorResult result);
    // Stored before setRefer by whoever completes.
    Halvex::DriverErrorResult errorResult = Halvex::DriverErrorResult::Success;

    // For the waiting side; the reply may be gone afterwards.
    // The result, or nothing when it did not come within `timeoutMs`.
    std::optional<Halvex::DriverErrorResult> wait(int timeoutMs);
    // Calls `notice` with the result, once: here when it is there already, else on the thread that completes
    // the reply, or on that which deletes the channel. No lock is held then. Until that moment somebody
    // waits, as replyed() tells. Best before the driver gets the reply, so that the notice comes from within
    // the completion. When the driver does not take it over, release() withdraws the notice and frees it.
    void notify(std::function<void(Halvex::DriverErrorResult)> notice);
    // Ends the waiting side's use without waiting.
    void release();

    // How many replies exist in the process: what a test of leaks counts.
    static int liveCount();

private:
    friend class ReplyRegistry;
    struct State;
    State* const state;
};
