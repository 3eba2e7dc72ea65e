// The daemon without its threads: requests served and deferred work carried out by the test's own
// thread, on the board of this test. Configure the board before the first call.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "stub/mcucmessagestruct.h"

namespace inprocess {

// Joins the daemon as its start does, without threads and without a bus: a reply goes nowhere but
// back to the test. Everything below does it first.
void Start();

// A request as it comes out of the decoder, from a peer that is none of the daemon's own; the test
// may change any field.
ZEPH_MCUC::QMB_proto3rd ReadRequest(std::uint32_t address, std::uint16_t length);
ZEPH_MCUC::QMB_proto3rd WriteRequest(std::uint32_t address, std::span<const std::uint8_t> data);

// Serves `request` and gives the reply: its ack, and in `m_data` the bytes that would leave.
ZEPH_MCUC::ThirdProtoMCUCMsg Serve(ZEPH_MCUC::QMB_proto3rd request);
ZEPH_MCUC::ThirdProtoMCUCMsg Read(std::uint32_t address, std::uint16_t length);
ZEPH_MCUC::ThirdProtoMCUCMsg Write(std::uint32_t address, std::span<const std::uint8_t> data);

// Carries out what waits in the work queue; the number of jobs.
int DrainQueue();

// The bytes of a text of hexadecimal digits; blanks in it don't count.
std::vector<std::uint8_t> Bytes(const char* hex);

}  // namespace inprocess
