// The decision, case by case.
#include "EmbeddedPlugins/TextFile/LiveStep.h"

#include <algorithm>

using Kind = LiveStep::Kind;

LiveStep nextStep(const LiveFacts& facts) {
    const LiveFacts::Time believedAt = facts.awaySince.value_or(facts.now) + LiveStep::patience;
    if (!facts.onDisk) {
        if (facts.isInFault)
            return {Kind::UpToDate};
        if (facts.isReading)
            return {Kind::Wait};
        return facts.now < believedAt ? LiveStep{Kind::Wait, believedAt} : LiveStep{Kind::Read};
    }
    if (facts.read && !hasChanged(*facts.read, *facts.onDisk))
        return {Kind::UpToDate};
    if (!facts.isLive || facts.hasGivenUp)
        return {Kind::Offer};
    if (facts.isReading)
        return {Kind::Wait};
    LiveFacts::Time readAt = facts.lastRead ? *facts.lastRead + LiveStep::pace : facts.now;
    if (facts.onDisk->size == 0 && facts.hasRows)
        readAt = std::max(readAt, believedAt);
    if (facts.isEvaluating)
        readAt = std::max(readAt, facts.now + LiveStep::evaluationCheck);
    return facts.now < readAt ? LiveStep{Kind::Wait, readAt} : LiveStep{Kind::Read};
}
