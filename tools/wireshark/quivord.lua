-- Takes messages of quivord's bus apart in Wireshark and tshark: what 'quivord-board capture' writes,
-- link type USER0. docs/wireshark.md says how it is installed and used.
--
-- A packet is a header of 8 bytes (version; flags: 1 from the daemon, 2 an envelope follows; two
-- bytes 0; the peer), perhaps the envelope of 28 bytes, and the frame. All little-endian, save the
-- frame's tag. Packets may be of any length and hold anything: what isn't there is never read.

local quivord = Proto("quivord", "quivord bus")

-- Names, printed by 'quivord-registers --lua'; scripts/docs renews them.
local NAMES = {
  acks = {
    [0] = "done", [1] = "the card behind the port did not answer",
    [2] = "the request arrived with a wrong checksum", [3] = "the reply had a wrong checksum",
    [4] = "no such register, or not this operation or length there",
    [5] = "the address and length do not fit",
    [6] = "the length is below or above what the register takes",
    [7] = "the register does not take this operation",
  },
  devices = {
    [0] = "sending card", [1] = "card", [2] = "multi-function card", [3] = "distribution box",
    [4] = "3D launcher",
  },
  tasks = {
    [0x000A3900] = "owd", [0x000A3700] = "kye", [0x000A3A00] = "moirad",
  },
  reports = {
    [0x14000000] = "ready: the FPGA is loaded and has its parameters",
    [0x01000002] = "a factory reset begins, mode", [0x02100006] = "size of the receiving cards",
    [0x02810000] = "the screen is configured by software",
    [0x02000001] = "brightness was sent to the receiving cards",
    [0x01000088] = "mapping was sent to the receiving cards",
  },
  registers = {
    { 0x02000011, 6, "time" }, { 0x02000017, 1, "source" }, { 0x02000018, 1, "port-0-role" },
    { 0x02000019, 1, "port-1-role" }, { 0x0200001A, 1, "port-2-role" },
    { 0x0200001B, 1, "port-3-role" }, { 0x0200001E, 1, "redundancy-0-3" },
    { 0x0200001F, 1, "link-0-3" }, { 0x02000021, 1, "power-on-time" },
    { 0x02000023, 1, "input-mode" }, { 0x02000024, 2, "real-width" },
    { 0x02000026, 2, "real-height" }, { 0x02000028, 2, "offset-x" }, { 0x0200002A, 2, "offset-y" },
    { 0x0200002C, 2, "set-width" }, { 0x0200003F, 1, "uart-overtime" },
    { 0x02000046, 2, "source-width" }, { 0x02000048, 2, "source-height" },
    { 0x0200004A, 1, "service-note" }, { 0x02000051, 2, "port-0-width" },
    { 0x02000053, 2, "port-0-height" }, { 0x02000055, 2, "port-0-offset-x" },
    { 0x02000057, 2, "port-0-offset-y" }, { 0x0200005A, 2, "port-1-width" },
    { 0x0200005C, 2, "port-1-height" }, { 0x0200005E, 2, "port-1-offset-x" },
    { 0x02000060, 2, "port-1-offset-y" }, { 0x02000063, 2, "port-2-width" },
    { 0x02000065, 2, "port-2-height" }, { 0x02000067, 2, "port-2-offset-x" },
    { 0x02000069, 2, "port-2-offset-y" }, { 0x0200006C, 2, "port-3-width" },
    { 0x0200006E, 2, "port-3-height" }, { 0x02000070, 2, "port-3-offset-x" },
    { 0x02000072, 2, "port-3-offset-y" }, { 0x02000074, 1, "low-delay" },
    { 0x02000091, 2, "distance-x" }, { 0x02000098, 1, "port-4-role" },
    { 0x02000099, 1, "port-5-role" }, { 0x0200009A, 1, "port-6-role" },
    { 0x0200009B, 1, "port-7-role" }, { 0x0200009C, 1, "correction" }, { 0x0200009D, 1, "role" },
    { 0x0200009E, 1, "redundancy-4-7" }, { 0x0200009F, 1, "link-4-7" },
    { 0x020000AC, 2, "distance-y" }, { 0x020000B1, 2, "port-4-width" },
    { 0x020000B3, 2, "port-4-height" }, { 0x020000B5, 2, "port-4-offset-x" },
    { 0x020000B7, 2, "port-4-offset-y" }, { 0x020000BA, 2, "port-5-width" },
    { 0x020000BC, 2, "port-5-height" }, { 0x020000BE, 2, "port-5-offset-x" },
    { 0x020000C0, 2, "port-5-offset-y" }, { 0x020000C3, 2, "port-6-width" },
    { 0x020000C5, 2, "port-6-height" }, { 0x020000C7, 2, "port-6-offset-x" },
    { 0x020000C9, 2, "port-6-offset-y" }, { 0x020000CC, 2, "port-7-width" },
    { 0x020000CE, 2, "port-7-height" }, { 0x020000D0, 2, "port-7-offset-x" },
    { 0x020000D2, 2, "port-7-offset-y" }, { 0x020000D4, 1, "sync" },
    { 0x02000100, 1, "port-8-role" }, { 0x02000101, 1, "port-9-role" },
    { 0x02000102, 1, "port-10-role" }, { 0x02000103, 1, "port-11-role" },
    { 0x02000104, 1, "port-12-role" }, { 0x02000105, 1, "port-13-role" },
    { 0x02000106, 1, "port-14-role" }, { 0x02000107, 1, "port-15-role" },
    { 0x02000120, 2, "redundancy-8-15" }, { 0x02000126, 2, "link-8-15" },
    { 0x02000131, 2, "port-8-width" }, { 0x02000133, 2, "port-8-height" },
    { 0x02000135, 2, "port-8-offset-x" }, { 0x02000137, 2, "port-8-offset-y" },
    { 0x0200013A, 2, "port-9-width" }, { 0x0200013C, 2, "port-9-height" },
    { 0x0200013E, 2, "port-9-offset-x" }, { 0x02000140, 2, "port-9-offset-y" },
    { 0x02000143, 2, "port-10-width" }, { 0x02000145, 2, "port-10-height" },
    { 0x02000147, 2, "port-10-offset-x" }, { 0x02000149, 2, "port-10-offset-y" },
    { 0x0200014C, 2, "port-11-width" }, { 0x0200014E, 2, "port-11-height" },
    { 0x02000150, 2, "port-11-offset-x" }, { 0x02000152, 2, "port-11-offset-y" },
    { 0x02000155, 2, "port-12-width" }, { 0x02000157, 2, "port-12-height" },
    { 0x02000159, 2, "port-12-offset-x" }, { 0x0200015B, 2, "port-12-offset-y" },
    { 0x0200015E, 2, "port-13-width" }, { 0x02000160, 2, "port-13-height" },
    { 0x02000162, 2, "port-13-offset-x" }, { 0x02000164, 2, "port-13-offset-y" },
    { 0x02000167, 2, "port-14-width" }, { 0x02000169, 2, "port-14-height" },
    { 0x0200016B, 2, "port-14-offset-x" }, { 0x0200016D, 2, "port-14-offset-y" },
    { 0x02000170, 2, "port-15-width" }, { 0x02000172, 2, "port-15-height" },
    { 0x02000174, 2, "port-15-offset-x" }, { 0x02000176, 2, "port-15-offset-y" },
    { 0x020001A5, 1, "edid-flag" }, { 0x020001D7, 1, "fiber-link" },
    { 0x020001D8, 1, "interface-4k" }, { 0x020001DA, 1, "optical-mode" },
    { 0x020001DE, 1, "output" }, { 0x020001DF, 1, "report-afresh" },
    { 0x020001E0, 2, "fiber-to-net" }, { 0x020001E9, 1, "high-speed" }, { 0x020001EA, 1, "hdr" },
    { 0x020001EB, 1, "reset-mark" }, { 0x020001EC, 2, "screen-width" },
    { 0x020001EE, 1, "screen-height" }, { 0x020001EF, 1, "test-mode" },
    { 0x020001F0, 8, "bypass-offset" }, { 0x020001F8, 1, "bypass" },
    { 0x020001F9, 3, "fiber-redundancy" }, { 0xF0000017, 1, "source" },
    { 0xF000001E, 1, "redundancy-0-3" }, { 0xF000001F, 1, "link-0-3" },
    { 0xF0000046, 2, "source-width" }, { 0xF0000048, 2, "source-height" },
    { 0xF0000091, 2, "distance-x" }, { 0xF000009E, 1, "redundancy-4-7" },
    { 0xF000009F, 1, "link-4-7" }, { 0xF00000AC, 2, "distance-y" },
    { 0xF0000120, 2, "redundancy-8-15" }, { 0xF0000126, 2, "link-8-15" },
    { 0xF00001D7, 1, "fiber-link" }, { 0xF00001DA, 1, "fiber-copy" }, { 0xF00001DE, 1, "output" },
    { 0xF00001E0, 2, "fiber-to-net" }, { 0xF00001EA, 1, "hdr" }, { 0xF00001EB, 1, "reset-mark" },
    { 0xF00001F2, 2, "fiber-1-links" }, { 0xF00001F4, 2, "fiber-2-links" },
    { 0xF00001F6, 6, "fiber-redundancy" }, { 0x00000000, 65536, "Hardware Basic Infomation" },
    { 0x00010000, 65536, "plugin card info register" }, { 0x01000000, 1, "Controller sort" },
    { 0x01000001, 1, "save paras for sendcard" }, { 0x01000002, 1, "Return Factory Set" },
    { 0x01000003, 1, "Test Point Command" }, { 0x01000004, 1, "Reload Send Card Program" },
    { 0x01000005, 1, "Chip Erase Command" }, { 0x01000018, 1, "Mapping conmmand for sender" },
    { 0x01000020, 1, "Debug command for FPGA" }, { 0x010000FF, 1, "Reload recvCard Program" },
    { 0x01000000, 65536, "command register" }, { 0x02000000, 65536, "feature info register" },
    { 0x02100000, 65536, "screen info echo" },
    { 0x02200000, 65536, "human-computer interaction info register" },
    { 0x02300000, 65536, "backup info register" },
    { 0x02400000, 65536, "intelligent brightness register" },
    { 0x02700000, 65536, "cabinet rotation register" },
    { 0x02810000, 65536, "shortcut config screen info register" },
    { 0x03000000, 65536, "Position of Net Port" },
    { 0x03100000, 65536, "number of function card port" },
    { 0x05000000, 65536, "software table info register" },
    { 0x05060000, 65536, "software table info register" },
    { 0x08000000, 65536, "edid space info register" }, { 0x0A000000, 65536, "lightAdjustType" },
    { 0xF0000000, 16777216, "testprintf Infomation" },
    { 0xF1000000, 16777216, "testprintf Infomation" },
    { 0x0E000000, 16777216, "RGBGamma info register" },
    { 0x12010000, 65536, "ScreenPatternGen info register" },
    { 0x0F000000, 16777216, "RVConfig File Space info register" },
    { 0x18000000, 1, "sendcard program update" }, { 0x18001000, 1, "sendcard program update" },
    { 0x18000000, 65536, "sendcard programm space register" },
    { 0x18200000, 1, "sendcard program update" }, { 0x18201000, 1, "sendcard program update" },
    { 0x18200000, 65536, "csendcard programm space register" },
  },
}
-- end of names

local HEADER, ENVELOPE, HEAD, SHORTEST = 8, 28, 18, 20
local FROM_DAEMON, HAS_ENVELOPE = 1, 2
local TAG_RESPONSE = 0xAA55
local READ, WRITE = 0, 1
local SENDER = 0
local ALL_PORTS, ALL_BOARDS = 0xFF, 0xFFFF

local operations = { [READ] = "read", [WRITE] = "write" }
local directions = { [0] = "towards the daemon", [1] = "from the daemon" }
local states = { [0] = "Bad", [1] = "Good" }

local f = quivord.fields
f.version = ProtoField.uint8("quivord.version", "Version")
f.direction = ProtoField.uint8("quivord.direction", "Direction", base.DEC, directions, FROM_DAEMON)
f.has_envelope = ProtoField.bool("quivord.has_envelope", "Envelope follows", 8, nil, HAS_ENVELOPE)
f.peer = ProtoField.uint32("quivord.peer", "Peer", base.HEX)
f.peer_name = ProtoField.string("quivord.peer.name", "Peer's name")
f.kind = ProtoField.string("quivord.kind", "Kind")

f.env_id = ProtoField.uint32("quivord.envelope.id", "Identifier", base.HEX)
f.env_count = ProtoField.uint32("quivord.envelope.count", "Label count")
f.env_size = ProtoField.uint32("quivord.envelope.size", "Size")
f.env_result = ProtoField.uint32("quivord.envelope.result", "Result")
f.env_detail = ProtoField.uint32("quivord.envelope.detail", "Detail", base.HEX)
f.env_small = ProtoField.uint16("quivord.envelope.small", "Small label")
f.env_large = ProtoField.uint16("quivord.envelope.large", "Large label")
f.env_length = ProtoField.uint32("quivord.envelope.length", "Frame bytes")

f.tag = ProtoField.uint16("quivord.tag", "Tag", base.HEX,
  { [0x55AA] = "request", [TAG_RESPONSE] = "response" })
f.ack = ProtoField.uint8("quivord.ack", "Ack", base.DEC, NAMES.acks)
f.labels = ProtoField.uint8("quivord.labels", "Labels")
f.source = ProtoField.uint8("quivord.source", "Source", base.HEX)
f.destination = ProtoField.uint8("quivord.destination", "Destination", base.HEX)
f.device = ProtoField.uint8("quivord.device", "Device", base.DEC, NAMES.devices)
f.port = ProtoField.uint8("quivord.port", "Port")
f.board = ProtoField.uint16("quivord.board", "Place on the port")
f.operation = ProtoField.uint8("quivord.operation", "Operation", base.DEC, operations)
f.reserved = ProtoField.uint8("quivord.reserved", "Reserved", base.HEX)
f.register = ProtoField.uint32("quivord.register", "Register", base.HEX)
f.register_name = ProtoField.string("quivord.register.name", "Register's name")
f.length = ProtoField.uint16("quivord.length", "Data length")
f.data = ProtoField.bytes("quivord.data", "Data")
f.checksum = ProtoField.uint16("quivord.checksum", "Checksum", base.HEX)
f.checksum_status = ProtoField.uint8("quivord.checksum.status", "Checksum status", base.DEC, states)
f.response_to = ProtoField.framenum("quivord.response_to", "Answers the request in",
  base.NONE, frametype.REQUEST)
f.response_in = ProtoField.framenum("quivord.response_in", "Answered in",
  base.NONE, frametype.RESPONSE)
f.time = ProtoField.relative_time("quivord.time", "Time since the request")

local e = {
  bad_sum = ProtoExpert.new("quivord.checksum.bad", "Wrong checksum",
    expert.group.CHECKSUM, expert.severity.ERROR),
  short = ProtoExpert.new("quivord.short", "Shorter than it has to be",
    expert.group.MALFORMED, expert.severity.ERROR),
  unknown = ProtoExpert.new("quivord.unknown_version", "A header of unknown version",
    expert.group.UNDECODED, expert.severity.WARN),
  length = ProtoExpert.new("quivord.length.wrong", "Not as many bytes as it says",
    expert.group.MALFORMED, expert.severity.WARN),
  refused = ProtoExpert.new("quivord.refused", "Refused",
    expert.group.RESPONSE_CODE, expert.severity.NOTE),
}
quivord.experts = { e.bad_sum, e.short, e.unknown, e.length, e.refused }

-- Which request a frame answers isn't in a capture without envelopes: it is the oldest one of the
-- peer for the same register that has no answer yet. What answers none is a report.
local waiting, request_of, response_of, times = {}, {}, {}, {}

function quivord.init()
  waiting, request_of, response_of, times = {}, {}, {}, {}
end

local function match(frame, pinfo)
  if pinfo.visited then return end
  local key = frame.key
  times[pinfo.number] = pinfo.abs_ts
  if frame.towards then
    waiting[key] = waiting[key] or {}
    table.insert(waiting[key], pinfo.number)
  elseif frame.tag == TAG_RESPONSE and waiting[key] and #waiting[key] > 0 then
    local request = table.remove(waiting[key], 1)
    request_of[pinfo.number] = request
    response_of[request] = pinfo.number
  end
end

local function kind_of(frame, pinfo)
  if frame.towards then return "request" end
  return request_of[pinfo.number] and "reply" or "report"
end

-- The narrowest of the named stretches in which a register lies; they stand in that order. Gives its
-- name, and whether that is a register's own or only the name of its space.
local SPACE = 0x10000  -- bytes of the smallest one
local known = {}
local function register_name(address)
  if known[address] == nil then
    known[address] = {}
    for _, row in ipairs(NAMES.registers) do
      if address >= row[1] and address < row[1] + row[2] then
        known[address] = row
        break
      end
    end
  end
  local row = known[address]
  return row[3], row[2] and row[2] < SPACE
end

local function peer_name(peer)
  local task = peer % 0x1000000
  return NAMES.tasks[task] or string.format("0x%06X", task)
end

local function bytes_text(count) return count .. (count == 1 and " byte" or " bytes") end

local function target_text(frame)
  if frame.device == SENDER then return "" end
  local name = NAMES.devices[frame.device] or "device"
  local card = frame.board == ALL_BOARDS and "every " .. name or name .. " " .. frame.board
  local port = frame.port == ALL_PORTS and "all ports" or "port " .. frame.port
  return card .. " of " .. port .. ": "
end

local function sum_of(tvb, first, last)
  local sum = 0x5555
  local text = tvb:raw(first, last - first)
  for i = 1, #text do sum = sum + text:byte(i) end
  return sum % 0x10000
end

local function dissect_envelope(tvb, at, frame_size, tree)
  local branch = tree:add(quivord, tvb(at, ENVELOPE), "Envelope")
  branch:add_le(f.env_id, tvb(at, 4))
  branch:add_le(f.env_count, tvb(at + 4, 4))
  branch:add_le(f.env_size, tvb(at + 8, 4))
  branch:add_le(f.env_result, tvb(at + 12, 4))
  branch:add_le(f.env_detail, tvb(at + 16, 4))
  branch:add_le(f.env_small, tvb(at + 20, 2))
  branch:add_le(f.env_large, tvb(at + 22, 2))
  local length = branch:add_le(f.env_length, tvb(at + 24, 4))
  if tvb(at + 24, 4):le_uint() ~= frame_size then length:add_proto_expert_info(e.length) end
end

local function dissect_register(tvb, at, frame, kind, tree)
  tree:add_le(f.register, tvb(at + 12, 4))
  local name, own = kind == "report" and NAMES.reports[frame.register], true
  if not name and frame.device == SENDER then name, own = register_name(frame.register) end
  if name then tree:add(f.register_name, tvb(at + 12, 4), name):set_generated() end
  local address = string.format("0x%08X", frame.register)
  local subject = not name and address or own and name or address .. " " .. name
  frame.subject = target_text(frame) .. subject
end

local function dissect_data(tvb, at, frame, tree)
  local length = tree:add_le(f.length, tvb(at + 16, 2))
  local carried = tvb:len() - at - SHORTEST
  local asks = frame.towards and frame.operation == READ  -- the length is what it asks for
  frame.data_size = asks and 0 or math.min(frame.length, carried)
  if carried ~= (asks and 0 or frame.length) then length:add_proto_expert_info(e.length) end
  if carried > 0 then tree:add(f.data, tvb(at + HEAD, carried)) end
end

local function dissect_sum(tvb, at, tree)
  local place = tvb(tvb:len() - 2, 2)
  local good = sum_of(tvb, at + 2, tvb:len() - 2) == place:le_uint()
  local item = tree:add_le(f.checksum, place)
  tree:add(f.checksum_status, place, good and 1 or 0):set_generated()
  if good then return true end
  item:append_text(string.format(" (should be 0x%04x)", sum_of(tvb, at + 2, tvb:len() - 2)))
  item:add_proto_expert_info(e.bad_sum)
  return false
end

local function add_matches(pinfo, tree)
  local request, response = request_of[pinfo.number], response_of[pinfo.number]
  if response then tree:add(f.response_in, response):set_generated() end
  if not request then return end
  tree:add(f.response_to, request):set_generated()
  local taken = math.floor((times[pinfo.number] - times[request]) * 1e6 + 0.5)  -- microseconds
  tree:add(f.time, NSTime.new(math.floor(taken / 1e6), taken % 1e6 * 1000)):set_generated()
end

local function info_text(frame, kind)
  local operation = operations[frame.operation] or "operation " .. frame.operation
  if kind == "request" and frame.operation == READ then
    return "reads " .. frame.subject .. ", " .. bytes_text(frame.length)
  elseif kind == "request" then
    return operation .. "s " .. frame.subject .. ", " .. bytes_text(frame.data_size)
  elseif kind == "report" then
    return "report " .. frame.subject .. ", " .. bytes_text(frame.data_size)
  end
  local ack = frame.ack == 0 and "" or ", ack " .. frame.ack .. ": " .. (NAMES.acks[frame.ack] or "?")
  return operation .. " of " .. frame.subject .. ", " .. bytes_text(frame.data_size) .. ack
end

local function read_head(tvb, at, towards, peer)
  local frame = {
    towards = towards,
    tag = tvb(at, 2):uint(),
    ack = tvb(at + 2, 1):uint(),
    device = tvb(at + 6, 1):uint(),
    port = tvb(at + 7, 1):uint(),
    board = tvb(at + 8, 2):le_uint(),
    operation = tvb(at + 10, 1):uint(),
    register = tvb(at + 12, 4):le_uint(),
    length = tvb(at + 16, 2):le_uint(),
  }
  frame.key = table.concat({ peer, frame.device, frame.port, frame.board, frame.operation,
    frame.register }, " ")
  return frame
end

-- The frame that begins at `at`; gives the text for the list.
local function dissect_frame(tvb, at, towards, peer, pinfo, tree)
  local branch = tree:add(quivord, tvb(at), "Frame")
  local frame = read_head(tvb, at, towards, peer)
  match(frame, pinfo)
  local kind = kind_of(frame, pinfo)
  tree:add(f.kind, kind):set_generated()
  branch:add(f.tag, tvb(at, 2))
  local ack = branch:add(f.ack, tvb(at + 2, 1))
  if kind == "reply" and frame.ack ~= 0 then ack:add_proto_expert_info(e.refused) end
  branch:add(f.labels, tvb(at + 3, 1))
  branch:add(f.source, tvb(at + 4, 1))
  branch:add(f.destination, tvb(at + 5, 1))
  branch:add(f.device, tvb(at + 6, 1))
  branch:add(f.port, tvb(at + 7, 1)):append_text(frame.port == ALL_PORTS and " (all)" or "")
  branch:add_le(f.board, tvb(at + 8, 2)):append_text(frame.board == ALL_BOARDS and " (all)" or "")
  branch:add(f.operation, tvb(at + 10, 1))
  branch:add(f.reserved, tvb(at + 11, 1))
  dissect_register(tvb, at, frame, kind, branch)
  dissect_data(tvb, at, frame, branch)
  local good = dissect_sum(tvb, at, branch)
  add_matches(pinfo, tree)
  return info_text(frame, kind) .. (good and "" or " [wrong checksum]")
end

local function short(tvb, pinfo, tree, what)
  tree:add_proto_expert_info(e.short, what)
  pinfo.cols.info = "[" .. what .. "]"
  return tvb:len()
end

function quivord.dissector(tvb, pinfo, root)
  pinfo.cols.protocol = "quivord"
  local tree = root:add(quivord, tvb())
  if tvb:len() < HEADER then return short(tvb, pinfo, tree, "shorter than its header") end
  local flags = tvb(1, 1):uint()
  local towards = flags % 2 == 0
  local enveloped = math.floor(flags / HAS_ENVELOPE) % 2 == 1
  local peer = tvb(4, 4):le_uint()
  local version = tree:add(f.version, tvb(0, 1))
  if tvb(0, 1):uint() ~= 1 then
    version:add_proto_expert_info(e.unknown)
    pinfo.cols.info = "[header of version " .. tvb(0, 1):uint() .. "]"
    return tvb:len()
  end
  tree:add(f.direction, tvb(1, 1))
  tree:add(f.has_envelope, tvb(1, 1))
  tree:add_le(f.peer, tvb(4, 4))
  tree:add(f.peer_name, tvb(4, 4), peer_name(peer)):set_generated()
  pinfo.cols.src = towards and peer_name(peer) or "quivord"
  pinfo.cols.dst = towards and "quivord" or peer_name(peer)

  local at = HEADER
  if enveloped then
    if tvb:len() < at + ENVELOPE then return short(tvb, pinfo, tree, "shorter than an envelope") end
    dissect_envelope(tvb, at, tvb:len() - at - ENVELOPE, tree)
    at = at + ENVELOPE
  end
  if tvb:len() < at + SHORTEST then return short(tvb, pinfo, tree, "shorter than a frame") end
  local info = dissect_frame(tvb, at, towards, peer, pinfo, tree)
  pinfo.cols.info = info
  tree:append_text(", " .. info)
  return tvb:len()
end

DissectorTable.get("wtap_encap"):add((wtap_encaps or wtap).USER0, quivord)
