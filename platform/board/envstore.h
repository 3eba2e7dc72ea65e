// The file behind the environment store: one `key=value` a line. The store's functions and the
// `envcfg` tool both stand on it; any thread of any process may call.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace board {

// The value of `key` in the file now; nothing where it is unset.
std::optional<std::string> ReadEnv(std::string_view key);

// Sets `key` in one step, under a lock that all processes on the board share. False where a text
// can't be a key or a value (see below) or the file can't be replaced; the old value then stands.
bool WriteEnv(std::string_view key, std::string_view value);

// Sets `key` to `value` in a text of `key=value` lines, in its place or at the end; nothing where
// the key is empty or has a `=` or a line feed, or the value has a line feed.
std::optional<std::string> WithSetting(std::string_view lines, std::string_view key,
                                       std::string_view value);

// Sets one line of such a file at once, under a lock on the folder that it lies in.
bool SetLineOfFile(const std::string& file, std::string_view key, std::string_view value);

}  // namespace board
