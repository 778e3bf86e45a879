#pragma once
// One model operation's field changes, announced together at its end: views never
// see a half-applied step (for example items removed but the selection not yet).

#include "model/AppModel.h"

#include <algorithm>
#include <vector>

class AppModel::Changes {
public:
    explicit Changes(AppModel& model) : model_(model) {}
    Changes(const Changes&) = delete;
    Changes& operator=(const Changes&) = delete;
    ~Changes() {
        for (Signal signal : signals_)
            (model_.*signal)();
    }

    void add(Signal signal) {
        if (std::find(signals_.begin(), signals_.end(), signal) == signals_.end())
            signals_.push_back(signal);
    }

private:
    AppModel& model_;
    std::vector<Signal> signals_;
};

template <class T> void AppModel::change(Changes& changes, T& field, T value, Signal signal) {
    if (field == value)
        return;
    field = std::move(value);
    changes.add(signal);
    if (signal == &AppModel::itemsChanged || signal == &AppModel::selectionChanged)
        changes.add(&AppModel::totalsChanged);
}
