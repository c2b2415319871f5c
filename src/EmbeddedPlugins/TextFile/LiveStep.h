// What to do about a file that may have changed since it was read: a decision without effects.
#pragma once

#include "EmbeddedPlugins/TextFile/FileStamp.h"

#include <chrono>
#include <optional>

/// Times are of one clock that only goes forward.
struct LiveFacts {
    using Time = std::chrono::milliseconds;

    std::optional<FileStamp> read;   ///< what the latest read of a file saw as it began
    std::optional<FileStamp> onDisk; ///< now; absent when there is no file
    bool isLive = false;             ///< the user wants it read by itself
    bool isReading = false;
    bool isInFault = false;    ///< the latest read did not find a file that it may open
    bool hasGivenUp = false;   ///< the latest read began well and failed
    bool hasRows = false;      ///< the table that is shown
    bool isEvaluating = false; ///< what is drawn of the latest read is not there yet
    Time now{};
    std::optional<Time> lastRead;  ///< when the latest began
    std::optional<Time> awaySince; ///< since when the file has been seen to be gone or empty
};

struct LiveStep {
    enum class Kind {
        UpToDate, ///< what was read is what is on the disk
        Offer,    ///< the user decides whether to read
        Read,
        Wait, ///< look again at `until`, or when the read that runs has ended
    };

    /// Between the beginnings of two reads.
    static constexpr LiveFacts::Time pace{500};
    /// How long a file may be gone or empty, as while it is being written anew, before that is believed.
    static constexpr LiveFacts::Time patience{2000};
    static constexpr LiveFacts::Time evaluationCheck{100};

    Kind kind;
    std::optional<LiveFacts::Time> until = {};

    bool operator==(const LiveStep&) const = default;
};

/// A read that runs is never cut short for a newer state, and evaluations of what was read are let finish: a
/// file that grows faster than it is read and drawn is still seen to grow.
LiveStep nextStep(const LiveFacts& facts);
