// Reading a JSON file that a person wrote: what is missing, of a wrong type, out of range or
// unknown is named with the place where it stands.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <string_view>

namespace quivord::json {

using Value = nlohmann::json;

// The first fault ends the reading; it says where and what is wanted.
struct Fault {
  std::string text;
};

[[noreturn]] void Wants(const std::string& where, const std::string& what);

// The line and column where a text stops being JSON, in one line for people.
std::string NotJson(const nlohmann::json::exception& fault);

// One object of a file, and the words that lead to it. It refers to the value. All functions throw
// a `Fault`.
class Object {
 public:
  Object(const Value& value, std::string where);

  bool Has(const char* key) const { return value_.contains(key); }
  const Value& At(const char* key) const;

  // A whole number from `least` to `most`.
  template <class Number>
  Number Whole(const char* key, std::int64_t least, std::int64_t most) const {
    return static_cast<Number>(WholeNumber(key, least, most));
  }
  // The same; `otherwise` where the key isn't there.
  template <class Number>
  Number WholeOr(const char* key, std::int64_t least, std::int64_t most, Number otherwise) const {
    return Has(key) ? Whole<Number>(key, least, most) : otherwise;
  }
  bool FlagOr(const char* key, bool otherwise) const;
  std::string Text(const char* key) const;
  Object Sub(const char* key) const;
  // The list of a key, and its entries as objects.
  const Value& List(const char* key) const;
  Object Entry(const char* key, std::size_t index) const;

  // Names the first key that isn't among `keys`.
  void Only(std::initializer_list<std::string_view> keys) const;

  // What a fault says about a key.
  std::string Place(const char* key) const { return where_ + ": \"" + key + "\""; }

 private:
  std::int64_t WholeNumber(const char* key, std::int64_t least, std::int64_t most) const;

  const Value& value_;
  std::string where_;
};

}  // namespace quivord::json
