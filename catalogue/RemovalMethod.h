#pragma once

#include <string>
#include <string_view>

// How an item is removed. `command` runs shell text instead of deleting a path
// (with administrator rights when `admin`); the other kinds carry no values.
struct RemovalMethod {
    enum class Kind { command, trash, permanent, adminTrash };

    Kind kind = Kind::trash;
    std::string command; // only for Kind::command
    bool admin = false;  // only for Kind::command

    static RemovalMethod makeCommand(std::string shell, bool admin) { return {Kind::command, std::move(shell), admin}; }
    static RemovalMethod trash() { return {Kind::trash, {}, false}; }
    static RemovalMethod permanent() { return {Kind::permanent, {}, false}; }
    static RemovalMethod adminTrash() { return {Kind::adminTrash, {}, false}; }

    bool isCommand() const { return kind == Kind::command; }

    // The case name: "command", "trash", "permanent", "adminTrash".
    std::string_view name() const;

    bool operator==(const RemovalMethod&) const = default;
};
