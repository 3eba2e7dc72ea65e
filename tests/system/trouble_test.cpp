// What a board's disk and clock may do to the daemon. Each case is a script on a file system of its
// own, 40 MiB in memory, in name spaces of its own, so that it can be filled up or made read-only.
#include <gtest/gtest.h>

#include "support/board_kit.h"
#include "support/run.h"

namespace {

struct Trouble {
  const char* name;
  const char* script;    // with `start`, `stop` and `ctl` of the preamble
  const char* expected;  // what it prints
};

void PrintTo(const Trouble& trouble, std::ostream* stream) { *stream << trouble.name; }

// `start` runs the daemon and waits until it answers; `ctl` prints nothing but the exit status.
constexpr char kPreamble[] = R"(
mount -t tmpfs -o size=40m none "$QUIVORD_BOARD" || exit 77
"$BIN/quivord-board" create "$QUIVORD_BOARD" speed=20 >/dev/null
said=$(mktemp)
trap 'rm "$said"' EXIT
ctl() { "$BIN/quivordctl" --timeout 5 "$@" >/dev/null 2>&1; echo "$1: $?"; }
start() {
  setpriv --pdeathsig KILL -- "$BIN/quivord" -debug >/dev/null 2>>"$said" &
  for i in $(seq 100); do
    "$BIN/quivordctl" --timeout 1 ping --count 1 >/dev/null 2>&1 && return
    sleep 0.1
  done
  echo "no answer"
}
stop() { kill $!; wait $! 2>/dev/null; }
year() { "$BIN/quivordctl" time | cut -c 1-4; }
set_clock() {  # microseconds in front of the machine's time
  python3 -c 'import struct, sys; sys.stdout.buffer.write(struct.pack("<q", int(sys.argv[1])))' "$1" \
    >"$QUIVORD_BOARD/clock.new" && cat "$QUIVORD_BOARD/clock.new" 1<>"$QUIVORD_BOARD/clock"
}
mkdir -p "$QUIVORD_BOARD/etc/init.d"; touch "$QUIVORD_BOARD/etc/init.d/flag_fpgaload"
)";

constexpr Trouble kTroubles[] = {
    {"DiskFullAndFreedAgain",
     R"(
start
dd if=/dev/zero of="$QUIVORD_BOARD/filler" bs=64K 2>/dev/null
dd if=/dev/zero of="$QUIVORD_BOARD/filler2" bs=512 2>/dev/null
ctl ping --count 3
ctl write 0xF0900000 1 2 3 4
ctl save
ctl identity set --mac 02:11:22:33:44:66
ctl status
"$BIN/quivordctl" read 0x03100000 2 --json
rm "$QUIVORD_BOARD"/filler*
ctl wall configure --rows 2 --columns 2 --cables top-left-rows --per-cable 2 --wait
stop
)",
     "ping: 0\nwrite: 0\nsave: 0\nidentity: 0\nstatus: 0\n"
     "{\"address\":51380224,\"data\":\"0100\",\"interface\":1,\"length\":2}\nwall: 0\n"},
    {"FoldersGone",
     R"(
start
rm -rf "$QUIVORD_BOARD"/log "$QUIVORD_BOARD"/tmp "$QUIVORD_BOARD"/usr/zeph/etc/owd
ctl ping --count 3
ctl save
ctl wall configure --rows 2 --columns 2 --cables top-left-rows --per-cable 2 --wait
stop
start
ctl wall show
ls -d "$QUIVORD_BOARD"/log | wc -l
cd "$QUIVORD_BOARD/usr/zeph/etc"
mv envcfg gone; ctl identity set --serial 13030d0000000042; ctl ping
mv gone envcfg; ctl identity set --serial 13030d0000000042
stop
)",
     "ping: 0\nsave: 0\nwall: 0\nwall: 0\n1\n"
     "identity: 1\nping: 0\nidentity: 0\n"},
    {"ReadOnlyFolders",
     R"(
start
for folder in . usr/zeph/etc/envcfg usr/brm100 log tmp run etc; do
  mount --bind "$QUIVORD_BOARD/$folder" "$QUIVORD_BOARD/$folder"
  mount -o remount,ro,bind "$QUIVORD_BOARD/$folder"
  echo $folder; ctl save; ctl identity set --serial 13030d0000000042; ctl status
  umount "$QUIVORD_BOARD/$folder"
done
ctl wall configure --rows 2 --columns 2 --cables top-left-rows --per-cable 2 --wait
stop
)",
     ".\nsave: 0\nidentity: 1\nstatus: 0\n"
     "usr/zeph/etc/envcfg\nsave: 0\nidentity: 1\nstatus: 0\n"
     "usr/brm100\nsave: 0\nidentity: 0\nstatus: 0\n"
     "log\nsave: 0\nidentity: 0\nstatus: 0\n"
     "tmp\nsave: 0\nidentity: 0\nstatus: 0\n"
     "run\nsave: 0\nidentity: 0\nstatus: 0\n"
     "etc\nsave: 0\nidentity: 0\nstatus: 0\n"
     "wall: 0\n"},
    {"StoreTooShort",
     R"(
start; stop
store=$QUIVORD_BOARD/usr/zeph/etc/envcfg/brmpara
truncate -s 1000 $store
start
ctl ping
stat -c %s $store
truncate -s 5000 $store
ctl save
ctl ping
stat -c %s $store  # nothing is stored behind the end
stop
start
tail -c 1 $store | od -An -tx1
stop
grep -c 'board: .*/brmpara has only [15]000 bytes; the rest is filled up' "$said"
)",
     "ping: 0\n16777216\nsave: 0\nping: 0\n5000\n ff\n2\n"},
    // On the template, in which a port begins and nothing but Linux answers, and on the real paths
    // of a device: in a root of its own, with the programs of this machine mounted into it.
    {"PlatformOfNothing",
     R"(
root=$QUIVORD_BOARD/root
mkdir -p $root/programs $root/etc/init.d $root/root $root/tmp $root/var/run
for folder in usr bin lib lib64 proc dev; do
  [ -e /$folder ] || continue
  if [ -L /$folder ]; then cp -P /$folder $root/; continue; fi
  mkdir $root/$folder && mount --rbind /$folder $root/$folder
done
mount --bind "$BIN" $root/programs
chroot $root /programs/quivord-requests-on-template 2>/dev/null
await() { for i in $(seq 600); do grep -qs "$1" $root/log/* && return; sleep 0.1; done; echo "no $1"; }
setpriv --pdeathsig KILL -- chroot $root /programs/quivord-on-template -debug >$root/said 2>&1 &
await 'Finish main init'
[ $(cat $root/var/run/quivord-on-template.pid) = $! ] && echo its number
for what in 'message bus' 'environment store' 'flash stores' 'FPGA bus'; do
  grep -q "platform: not here: the $what" $root/said || echo "nothing about the $what"
done
for line in '=== udp_port_init === fail!!!!' 'Error when openning env!' 'brmpara file fail'; do
  await "$line"
done
touch $root/etc/init.d/flag_fpgaload
await 'load flag to OWD'  # it goes on without an FPGA
sleep 1; kill -0 $! && echo stays
stop
)",
     "0x00010000: 0\n0x0a000000: 4\n0x0a000000: 0 00 00\n0x0a000000: 0\n0xf0000000: 0 00 00 00 00\n"
     "its number\nstays\n"},
    {"ReadOnlyBoardIsRefused",
     R"(
start; stop
mount -o remount,ro "$QUIVORD_BOARD"
timeout 10 "$BIN/quivord" 2>"$said"; echo $?
grep -c 'Read-only file system' "$said"
)",
     "1\n1\n"},
    {"TimeBackwards2038And2106",
     R"(
start
ctl brightness plan "$SOURCE/examples/brightness-mix.json"
for offset in -800000000000000 400000000000000 3000000000000000 0; do
  set_clock $offset
  # the clock's chip has two digits for it
  [ $(year) = $(date +20%y -d "$((offset / 1000000)) seconds") ] && echo its year
  ctl brightness show
done
ctl time set 2038-01-19 03:14:08; year
ctl time set 2099-12-31 12:00:00; year
ctl time set 2100-01-01 00:00:00
ctl brightness show
stop
)",
     "brightness: 0\nits year\nbrightness: 0\nits year\nbrightness: 0\nits year\nbrightness: 0\n"
     "its year\nbrightness: 0\ntime: 0\n2038\ntime: 0\n2099\ntime: 2\nbrightness: 0\n"},
};

class Troubles : public testing::TestWithParam<Trouble> {};

TEST_P(Troubles, TheDaemonGoesOn) {
  board_kit::Put("scripts/run.sh", std::string(kPreamble) + GetParam().script);
  const std::filesystem::path board = board_kit::Named() / "board";
  std::filesystem::create_directories(board);
  const auto run = support::Run({"/usr/bin/unshare", "--map-root-user", "--mount", "/bin/bash",
                                 board_kit::Named() / "scripts/run.sh"},
                                {"QUIVORD_BOARD=" + board.string(), "BIN=" + support::Built("."),
                                 "SOURCE=" + support::Source(".")},
                                std::chrono::seconds(120));
  if (run.status == 77 || run.err.find("unshare") != std::string::npos) {
    GTEST_SKIP() << "no name spaces here: " << run.err;
  }
  EXPECT_EQ(run.out, GetParam().expected) << run.err;
}

INSTANTIATE_TEST_SUITE_P(, Troubles, testing::ValuesIn(kTroubles),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
