#include "bluetoothbus.h"

#include <gtest/gtest.h>

TEST(BluetoothBusTest, OpenWhereNoDeviceAnswersFailsAndStaysClosed)
{
    Obd::BluetoothBus bus;
    ASSERT_TRUE(bus.init("00:00:00:00:00:00", 0x1101));
    EXPECT_NE(bus.open(), Obd::IMessageBus::OS_OK);
    EXPECT_FALSE(bus.errorString().empty());
    // Still closed: init is allowed again, and close has nothing to do.
    EXPECT_TRUE(bus.close());
    EXPECT_TRUE(bus.init("01:23:45:67:89:AB", 1));
}
