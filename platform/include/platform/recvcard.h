// The link to the receiving cards and other devices behind the output ports.
//
// Any thread may call either function; calls may take as long as a card needs to answer.
#pragma once

#include <cstdint>

extern "C" {

// What goes down a port in front of the data, 18 bytes where it is packed.
struct RECVCARD_MESG_T {
  uint8_t DeviceType;  // 1 receiving card, 2 multi-function card, 3 distribution box, 4 3D launcher
  uint8_t ProtAddr;    // output port, 0xFF for all
  uint16_t BoardAddr;  // board on the port, 0xFFFF for all
  uint8_t code;        // 0 read, 1 write
  uint8_t PacketType;  // 0
  uint32_t RegisterAddr;  // register on the card
  uint16_t length;        // data bytes
  const uint8_t* data;    // null; the data goes as an argument of its own
  uint16_t checksum;      // 16-bit sum of the 12 header bytes and, for a write, of the data
};

// Asks a card for `head->length` bytes into `data`. `index` is the FPGA, 1. 0 on success; anything
// else is failure, and `data` is as before.
int32_t ReadFPGAformRecvCard(uint8_t index, RECVCARD_MESG_T* head, uint16_t port, uint8_t* data);

// Sends `head` and its data down `port`. 0 when it was sent, whether or not anybody is there.
int32_t WriteFPGAToRecvCard(uint8_t index, RECVCARD_MESG_T* head, uint16_t port,
                            const uint8_t* data);

}  // extern "C"
