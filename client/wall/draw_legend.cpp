#include <algorithm>

#include "counted.h"
#include "wall/draw_parts.h"
#include "wall/palette.h"
#include "wall/words.h"

namespace quivord::wall {
namespace {

constexpr Font kHeading{11, true};
constexpr Font kName{15, true};
constexpr Font kLine{12.5};
constexpr Font kSmall{10.5};

void DrawHeading(Painter& painter, const Box& below, const std::string& text) {
  painter.Text(text, {below.x, below.y - 12}, kHeading, palette::kFaintInk);
}

std::string RepeatsText(const Wall& wall, const Port& port) {
  const auto repeats = RepeatedBy(wall, port);
  if (repeats.empty()) return "not repeated";
  return std::string(repeats.size() == 1 ? "repeated by port " : "repeated by ports ") +
         ListText(repeats);
}

void DrawPlate(Painter& painter, const Box& box, const Wall& wall, const Port& port) {
  painter.Fill(box, palette::kStage, 8);
  painter.Fill({box.x, box.y + 12, 4, box.height - 24}, palette::OfPort(port.number), 2);
  const double x = box.x + 18;
  const double most = box.width - 32;
  const std::string cards = Counted(port.cards, "cabinet");
  const double cardsWidth = painter.Width(cards, kLine);
  painter.Text("Port " + std::to_string(port.number), {x, box.y + 27}, kName, palette::kInk);
  painter.Text(cards, {box.right() - 14, box.y + 27}, kLine, palette::kSoftInk, Align::kRight,
               std::min(cardsWidth, most - 60));
  const ZEPH_MCUC::PortWindow& window = port.window;
  painter.Text(SizeText(window.width, window.height) + " px at " + std::to_string(window.x) + ", " +
                   std::to_string(window.y),
               {x, box.y + 48}, kLine, palette::kSoftInk, Align::kLeft, most);
  painter.Text(RepeatsText(wall, port), {x, box.y + 67}, kLine, palette::kFaintInk, Align::kLeft,
               most);
}

const Port* FindPort(const Wall& wall, std::size_t number) {
  const auto port = std::ranges::find(wall.ports, number, &Port::number);
  return port == wall.ports.end() ? nullptr : &*port;
}

// A main port's socket is full of its colour; one that repeats bears the colour of what it shows.
void DrawSocket(Painter& painter, const Box& box, std::size_t number, const Port* port) {
  const std::string text = std::to_string(number);
  const Point middle{box.centre().x, box.centre().y + Painter::CapHeight(kName) / 2};
  std::string below = "free";
  if (port == nullptr) {
    painter.Stroke(box.inset(0.5), palette::kHairline, 1, 7);
    painter.Text(text, middle, kName, palette::kFaintInk, Align::kCentre);
  } else if (port->main()) {
    painter.Fill(box, palette::OfPort(number), 7);
    painter.Text(text, middle, kName, palette::kPaper, Align::kCentre);
    below = port->backup ? "backup" : "main";
  } else {
    painter.Fill(box, palette::Tint(*port->repeats), 7);
    painter.Stroke(box.inset(0.75), palette::Edge(*port->repeats), 1.5, 6.5);
    painter.Text(text, middle, kName, palette::OfPort(*port->repeats), Align::kCentre);
    below = "as " + std::to_string(*port->repeats);
  }
  painter.Text(below, {box.centre().x, box.bottom() + 13}, kSmall, palette::kFaintInk,
               Align::kCentre);
}

struct Sign {
  Station station;
  const char* number;
  const char* meaning;
};

constexpr Sign kSigns[] = {{Station::kFirst, "0", "first cabinet"},
                           {Station::kBetween, "1", "number on its cable"},
                           {Station::kLast, "2", "last cabinet"}};

}  // namespace

void DrawLegend(const Wall& wall, const Picture& picture, Painter& painter) {
  DrawHeading(painter, picture.plates, "CABLES");
  std::size_t plate = 0;
  for (const Port& port : wall.ports) {
    if (!port.main()) continue;
    DrawPlate(painter, picture.Plate(plate++), wall, port);
  }
  DrawHeading(painter, picture.sockets, "PORTS OF THE DEVICE");
  for (std::size_t port = 0; port < kPorts; ++port) {
    DrawSocket(painter, picture.Socket(port), port, FindPort(wall, port));
  }
}

void DrawSigns(const Wall& wall, const Picture& picture, Painter& painter) {
  const Box& box = picture.signs;
  if (!picture.labelled()) {
    painter.Text("Cabinets are too small here to bear numbers; a dot marks where a cable comes in.",
                 {box.x, box.y + 30}, kLine, palette::kSoftInk, Align::kLeft, box.width);
    return;
  }
  constexpr double kCell = 62;
  constexpr double kStackedStep = 36;
  const auto first = std::ranges::find_if(wall.ports, &Port::main);
  const std::size_t port = first == wall.ports.end() ? 0 : first->number;
  Point at{box.x + 14, box.y + 24};
  for (const Sign& sign : kSigns) {
    DrawStation(painter, at, port, sign.number, kCell, sign.station);
    painter.Text(sign.meaning, {at.x + 23, at.y + 4.5}, kLine, palette::kSoftInk);
    if (picture.signsStacked) {
      at.y += kStackedStep;
    } else {
      at.x += painter.Width(sign.meaning, kLine) + 60;
    }
  }
  const double y = picture.signsStacked ? at.y : at.y + 38;
  painter.Text("Ports and cabinets count from 0.", {box.x, y}, kLine, palette::kFaintInk,
               Align::kLeft, box.width);
}

}  // namespace quivord::wall
