// Where everything stands in the picture of a wall: the screen in scale, its legend, the sizes.
//
//     title                                            the legend stands below the stage,
//     what the wall is                                 or beside it where the wall is
//     +--- stage ------------------+                   narrower than it is high
//     |        1024 px             |
//     |   +--- screen ---------+   |
//     +----------------------------+
//     legend: a plate a port, the sockets, the signs
//
// Pure: no cairo, any thread.
#pragma once

#include "wall/model.h"
#include "wall/paint.h"

namespace quivord::wall {

struct Picture {
  double width = 0;
  double height = 0;
  Box title;
  Box stage;
  Box screen;            // all that is drawn of the wall: the screen and every cabinet
  double perPixelX = 1;  // units that a pixel of the wall takes
  double perPixelY = 1;
  double cell = 0;  // the shorter side of a cabinet
  Box plates;       // one a main port, in rows of `platesAcross`
  std::size_t platesAcross = 1;
  Box sockets;  // all ports of the device, in rows of `socketsAcross`
  std::size_t socketsAcross = kPorts;
  Box signs;  // what the signs mean

  bool signsStacked = false;

  // Where a cabinet and a port's plate or socket stand.
  Box Cabinet(const Wall& wall, const Corner& corner) const;
  Box Plate(std::size_t n) const;
  Box Socket(std::size_t n) const;

  // Below this, a cabinet bears no number.
  bool labelled() const { return cell >= 15; }
};

// Lays out the picture. `wall.card` and `wall.screen` are not empty.
Picture Arrange(const Wall& wall);

}  // namespace quivord::wall
