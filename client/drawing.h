// The pictures and files that commands make of what a device holds.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

#include "command.h"
#include "draw/paint.h"

namespace ctl {

// What the command line says about a picture.
struct Drawing {
  std::string file;
  int scale = quivord::draw::kScale;  // pixels of a PNG a unit

  // As the file's name says; nothing, and `kFormatRule` is to be said, where it says none.
  std::optional<quivord::draw::Format> format() const { return quivord::draw::FormatOf(file); }
};

inline constexpr char kFormatRule[] = "FILE ends in .png or .svg";

// Declare FILE and --scale of a picture.
void AddPictureFile(CLI::App& app, Drawing& drawing);
void AddPictureScale(CLI::App& app, Drawing& drawing);

// Says that the picture was drawn; or `fault`, where drawing it had one.
Exit EndDrawing(const Context& context, const Drawing& drawing, const std::string& fault);

// A command that exports: FILE, and `run` with it, empty for standard output.
Run DeclareExporting(CLI::App& app, Exit (*run)(Context& context, const std::string& file));

// Writes `text` and a line feed to `file`; where none is named, prints it, or `object`.
Exit Export(const Context& context, const std::string& file, const std::string& text,
            const nlohmann::json& object);

}  // namespace ctl
