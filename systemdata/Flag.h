#pragma once

#include <mutex>

// A Bool shared between threads, read and written only under its lock.
class Flag {
public:
    bool value() const {
        std::lock_guard guard(lock_);
        return value_;
    }
    void set(bool value) {
        std::lock_guard guard(lock_);
        value_ = value;
    }

private:
    mutable std::mutex lock_;
    bool value_ = false;
};
