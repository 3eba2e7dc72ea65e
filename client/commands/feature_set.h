// Setting a feature register, the same way for every command that does it.
#pragma once

#include <string>

#include "command.h"
#include "proto/feature_names.h"

namespace ctl {

// Sets `row` to the value that `word` says, waits until the device shows it, and says so. Refuses
// what isn't a client's to write and what is no value, before anything is sent.
// JSON has the value as `member`, or as `value` beside the register's `name`.
Exit SetFeature(const Context& context, const ZEPH_MCUC::FeatureRegister& row,
                const std::string& word, const char* member = nullptr);

}  // namespace ctl
