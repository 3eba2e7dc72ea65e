// A piece of a test in a process of its own, forked off: it may end by a power cut, and what it
// leaves in memory ends with it.
#pragma once

#include <functional>
#include <string>

namespace support {

struct ChildResult {
  int status;              // exit status, 128 + n after signal n
  std::string complaints;  // what `Complain` said
};

// Runs `body` in a child. The caller must not have started threads. A child that takes longer than
// a minute is ended by SIGALRM.
ChildResult InChild(const std::function<void()>& body);

// In the child: says what is wrong; the text reaches the parent also where the child ends badly.
void Complain(const std::string& text);

}  // namespace support
