// How a function of the template says that what it stands for is not on this platform.
#pragma once

namespace missing {

// Says once, on standard error, that `component` is not here; later calls say nothing. `component`
// is a literal, and there are at most 16. Any thread may call it.
void Say(const char* component);

// The same, and the answer besides.
template <class Answer>
Answer Say(const char* component, Answer answer) {
  Say(component);
  return answer;
}

}  // namespace missing
