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
        for (Signal signal : summaries_)
            (model_.*signal)();
    }

    void add(Signal signal) { addOnce(signals_, signal); }
    void addSummary(Signal signal) { addOnce(summaries_, signal); }

private:
    static void addOnce(std::vector<Signal>& list, Signal signal) {
        if (std::find(list.begin(), list.end(), signal) == list.end())
            list.push_back(signal);
    }

    AppModel& model_;
    std::vector<Signal> signals_;
    std::vector<Signal> summaries_;
};

template <class T> void AppModel::change(Changes& changes, T& field, T value, Signal signal) {
    if (field == value)
        return;
    field = std::move(value);
    announce(changes, signal);
}

inline void AppModel::announce(Changes& changes, Signal signal) {
    changes.add(signal);
    // The summary signals go last, once per step however many of their fields moved.
    if (signal == &AppModel::itemsChanged || signal == &AppModel::selectionChanged)
        changes.addSummary(&AppModel::totalsChanged);
    if (signal == &AppModel::itemsChanged || signal == &AppModel::itemsByCategoryChanged ||
        signal == &AppModel::selectionChanged || signal == &AppModel::categoryStateChanged ||
        signal == &AppModel::cleanScopeChanged)
        changes.addSummary(&AppModel::resultsChanged);
}
