// The records that the communication driver's ioctls take, as the driver defines them. All integers
// are little-endian and 32 bits wide.
#pragma once

#include <cstdint>

namespace ZEPH_MCUC {

enum comif_type_e : uint32_t {
  T_SPIDEV,
  T_I2CDEV,
  T_COMIF,
  T_CCID,
  T_FAN,
  T_FPGA_CFG,
  T_KEYPAD,
  T_DRV_MAX,
  T_COMIF_TYPE_MAX,
};

enum comif_cmd_e : uint32_t {
  COMIF_INFO,
  COMIF_READ,
  COMIF_WRITE,
  COMIF_CFG_FPGA,
  COMIF_READ_TX,
  COMIF_WRITE_TX,
  COMIF_CMD_MAX,
};

// The two FPGAs by their index.
enum spidev_devtype_e : uint8_t { T_SPIDEV_DEVTYPE_FPGA0 = 0, T_SPIDEV_DEVTYPE_FPGA1 = 1 };

enum spidev_subtype_e : uint32_t { T_SPIDEV_REG, T_SPIDEV_UPDATE, T_SPIDEV_LOGLVL };

enum i2cdev_subtype_e : uint32_t {
  T_I2CDEV_DEVICES,
  T_I2CDEV_CACHE,
  T_I2CDEV_UPDATE,
  T_I2CDEV_DEVICES_BIT,
  T_I2CDEV_DEVICES_REG,
  T_I2CDEV_LOGLVL,
  T_I2CDEV_CLK_CFG,
};

enum i2cdev_devtype_e : uint32_t {
  T_I2CDEV_DEVTYPE_I2CSW0 = 0,
  T_I2CDEV_DEVTYPE_RTC = 1,
  T_I2CDEV_DEVTYPE_AC_POWER_J1 = 2,
  T_I2CDEV_DEVTYPE_AC_EEPROM_J1 = 3,
  T_I2CDEV_DEVTYPE_AC_POWER_J2 = 4,
  T_I2CDEV_DEVTYPE_AC_EEPROM_J2 = 5,
  T_I2CDEV_DEVTYPE_IDT6965 = 9,
  T_I2CDEV_DEVTYPE_I2CSW1 = 12,
  T_I2CDEV_DEVTYPE_CDCM6208 = 15,
  T_I2CDEV_DEVTYPE_TC358743 = 17,
  T_I2CDEV_DEVTYPE_NOUSE = 18,
};

struct comif_ioctl_t {
  uint32_t length, type, cmd, index, error, data_len;
};
static_assert(sizeof(comif_ioctl_t) == 24);

struct spidev_ioctl_t {
  uint32_t subtype;
};
struct spidev_ioctl_ex_access_t {
  spidev_ioctl_t header;
  uint32_t offset, length;
};
struct spidev_ioctl_access_t {
  comif_ioctl_t header;
  uint32_t value[256];  // used as a byte buffer
  uint32_t mask[256];
  spidev_ioctl_ex_access_t extra;
};
static_assert(sizeof(spidev_ioctl_access_t) == 2084);

struct i2cdev_ioctl_t {
  uint32_t subtype, devtype;
};
struct i2cdev_clk_ioctl_ex_access_t {
  i2cdev_ioctl_t header;
  uint32_t out_clk, fre_hz, out_select, mode_select;
};
struct i2cdev_ioctl_ex_access_t {
  i2cdev_ioctl_t header;
  uint32_t addr;  // or the bytes qsfp_upper_flg, selector, dev_addr, data_addr
  i2cdev_clk_ioctl_ex_access_t clk_config;
  uint32_t length;
};
struct i2cdev_ioctl_access_t {
  comif_ioctl_t header;
  uint32_t value[24];
  uint32_t mask[24];
  i2cdev_ioctl_ex_access_t extra;
};
static_assert(sizeof(i2cdev_ioctl_access_t) == 256);

}  // namespace ZEPH_MCUC
