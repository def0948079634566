#include "platform/foundation_values.h"

#include "printing.h"

#include <QApplication>

#include <gtest/gtest.h>

// The frame and the adapters are widgets: they need an application, but no display.
int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "minimal"); // leaks nothing, unlike offscreen
    const QApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    const platform::release_pool pool; // as a host's event loop has one
    return RUN_ALL_TESTS();
}
