#include <algorithm>

#include "markdown.h"
#include "pages.h"
#include "proto/calc_feature.h"
#include "proto/calc_feature_words.h"
#include "proto/report_names.h"

namespace registers {
namespace {

using namespace ZEPH_MCUC;
using Rows = std::vector<std::vector<std::string>>;

bool IsOfPorts(const FeatureGroup& group) {
  return std::string_view(group.registers[0].name).starts_with("port-");
}

const char* OwnerText(FeatureOwner owner) {
  switch (owner) {
    case FeatureOwner::kClient:
      return "client";
    case FeatureOwner::kDaemon:
      return "daemon";
    case FeatureOwner::kHardware:
      return "hardware";
  }
  return "";
}

std::string OffsetText(const FeatureRegister& row) {
  return Hex(row.offset) + (row.place == FeaturePlace::kCell ? " cell" : "");
}

// A choice by its word, with the values behind it.
std::string ChoicesText(const FeatureRegister& row) {
  std::string text;
  for (const FeatureChoice& choice : row.choices) {
    text += (text.empty() ? "" : ", ") + std::string(choice.word) + " " + Hex(choice.shown, 2);
    if (choice.written == FeatureChoice::kNever) text += " (shown only)";
    if (choice.written >= 0) {
      text += " (written as " + Hex(static_cast<std::uint32_t>(choice.written), 2) + ")";
    }
  }
  return text;
}

std::string ValuesText(const FeatureRegister& row) {
  return row.form == FeatureForm::kChoice ? ChoicesText(row) : FeatureRange(row);
}

std::string GroupTable(const FeatureGroup& group) {
  const bool written = std::any_of(group.registers.begin(), group.registers.end(),
                                   [](const FeatureRegister& row) { return *row.effect != '\0'; });
  std::vector<std::string> head = {"Offset", "Bytes", "Name", "Values", "Written by", "Meaning"};
  if (written) head.emplace_back("What a write sets off");
  Rows rows;
  for (const FeatureRegister& row : group.registers) {
    rows.push_back({OffsetText(row), std::to_string(row.width), Code(row.name), ValuesText(row),
                    OwnerText(row.owner), row.meaning});
    if (written) rows.back().emplace_back(row.effect);
  }
  return Table(head, rows);
}

// A line a port; what all ports have in common stands above.
std::string PortsTable(const FeatureGroup& group) {
  std::vector<std::string> head = {"Port"};
  Rows rows(kPortPlaces.size());
  std::string meanings;
  for (const FeatureRegister& row : group.registers) {
    const std::string_view name = std::string_view(row.name).substr(sizeof "port-" - 1);
    const auto hyphen = name.find('-');
    const std::string port(name.substr(0, hyphen));
    auto& line = rows[static_cast<std::size_t>(std::stoi(port))];
    if (line.empty()) line.push_back(port);
    line.push_back(Hex(row.offset));
    if (port != "0") continue;
    head.push_back(Code("port-N-" + std::string(name.substr(hyphen + 1))));
    meanings += "- " + head.back() + ", " + std::to_string(row.width) +
                (row.width == 1 ? " byte: " : " bytes: ") + row.meaning + "; " + ValuesText(row) +
                "\n";
  }
  return meanings + "\n" + Table(head, rows);
}

const char* DataText(ReportForm form) {
  switch (form) {
    case ReportForm::kMark:
      return "";
    case ReportForm::kNumber:
      return "the number";
    case ReportForm::kSize:
      return "width and height, 16 bits each";
  }
  return "";
}

}  // namespace

std::string FeaturesPart() {
  std::string text;
  for (const FeatureGroup& group : FeatureGroups()) {
    text += (text.empty() ? "### " : "\n### ") + std::string(group.title) + "\n\n" +
            (IsOfPorts(group) ? PortsTable(group) : GroupTable(group));
  }
  return text;
}

std::string ReportsPart() {
  Rows rows;
  for (const ReportName& row : ReportNames()) {
    rows.push_back(
        {Hex(row.address, 8), std::to_string(row.length), row.meaning, DataText(row.form)});
  }
  return Table({"Register", "Bytes", "Meaning", "Data"}, rows);
}

}  // namespace registers
