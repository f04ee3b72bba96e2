// Entry point of every test program: a Qt application object so that signals and settings work.
#include <QCoreApplication>
#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
