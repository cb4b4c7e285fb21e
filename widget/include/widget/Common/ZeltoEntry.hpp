#pragma once

#include <memory>

#include "foundation/Date.hpp"
#include "shared/WidgetSnapshot.hpp"
#include "widget/Common/LiveData.hpp"

namespace zelto::widget {

/// One entry of a widget's timeline. Immutable once made, so that the entries of a timeline share one
/// snapshot.
struct ZeltoEntry {
    /// The instant at which it is shown: "now" for every view.
    Date date;
    LiveData live;
    /// Null when none could be loaded.
    std::shared_ptr<const shared::WidgetSnapshot> snapshot;

    /// The snapshot when it is less than 900 seconds older than the entry, otherwise null.
    const shared::WidgetSnapshot* freshSnapshot() const {
        return snapshot && date - snapshot->date < 900 ? snapshot.get() : nullptr;
    }
};

}  // namespace zelto::widget
