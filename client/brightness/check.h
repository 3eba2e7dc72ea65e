// Whether a plan is one that a device would run as it is meant. Pure; any thread.
#pragma once

#include <string>

#include "brightness/plan.h"

namespace quivord::brightness {

// Why a plan is not sent: times out of order, too much of something, something missing, tables that
// don't fit. Empty where there is no reason.
std::string Obstacle(const Plan& plan);

// The nodes that do not run on all days: a start counts weekdays from Sunday, an arrival from
// Monday, so after a start they may be off by a day. Empty where there are none.
std::string WeekdayWarning(const Plan& plan);

}  // namespace quivord::brightness
