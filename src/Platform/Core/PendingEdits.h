// What holds input that its model does not have yet.
#pragma once

/// Implemented by view controllers that let typed input rest for a while. The window calls it before it saves
/// and before it closes. Main thread.
class PendingEdits {
  public:
    virtual ~PendingEdits() = default;

    /// Hands the waiting input over now; does nothing when none waits.
    virtual void commitPendingEdits() = 0;
    /// Hands over only what its user, who may be typing at this moment, does not notice.
    virtual void handOverQuietly() {}
};
