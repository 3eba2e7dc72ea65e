#include "json/object.h"

#include <algorithm>
#include <utility>

namespace quivord::json {

std::string NotJson(const nlohmann::json::exception& fault) {
  const std::string_view text = fault.what();  // "[exception's name and number] parse error at ..."
  const auto name = text.find("] ");
  return "not JSON: " + std::string(name == text.npos ? text : text.substr(name + 2));
}

void Wants(const std::string& where, const std::string& what) { throw Fault{where + " " + what}; }

Object::Object(const Value& value, std::string where) : value_(value), where_(std::move(where)) {
  if (!value.is_object()) Wants(where_, "is an object");
}

const Value& Object::At(const char* key) const {
  if (!Has(key)) Wants(where_, std::string("has no \"") + key + "\"");
  return value_.at(key);
}

std::int64_t Object::WholeNumber(const char* key, std::int64_t least, std::int64_t most) const {
  const Value& value = At(key);
  if (!value.is_number_integer() || value < least || value > most) {
    Wants(Place(key), "is a number from " + std::to_string(least) + " to " + std::to_string(most));
  }
  return value.get<std::int64_t>();
}

bool Object::FlagOr(const char* key, bool otherwise) const {
  if (!Has(key)) return otherwise;
  if (!At(key).is_boolean()) Wants(Place(key), "is true or false");
  return At(key).get<bool>();
}

std::string Object::Text(const char* key) const {
  if (!At(key).is_string()) Wants(Place(key), "is a text");
  return At(key).get<std::string>();
}

Object Object::Sub(const char* key) const { return {At(key), Place(key)}; }

const Value& Object::List(const char* key) const {
  if (!At(key).is_array()) Wants("\"" + std::string(key) + "\"", "is a list");
  return At(key);
}

Object Object::Entry(const char* key, std::size_t index) const {
  return {List(key).at(index), "entry " + std::to_string(index) + " of \"" + key + "\""};
}

void Object::Only(std::initializer_list<std::string_view> keys) const {
  for (const auto& [key, value] : value_.items()) {
    if (std::ranges::find(keys, key) == keys.end()) {
      Wants(where_, "has \"" + key + "\", which is unknown");
    }
  }
}

}  // namespace quivord::json
