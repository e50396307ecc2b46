#pragma once

#include <QtTest>

#include <memory>

/// One test program holds the test classes of one folder. Its first argument names the class to run, the others are Qt
/// Test's.
namespace tickwise::testing {

enum class TestApplication
{
    core,   ///< a QCoreApplication
    widgets ///< a QApplication
};

/// Adds a test class to the program.
struct TestClassRegistration
{
    TestClassRegistration(const char *name, TestApplication application, std::unique_ptr<QObject> (*make)());
};

/// Adds a part that a test plays in a process of its own: `program <name>` runs `run` in a QCoreApplication.
struct TestRoleRegistration
{
    TestRoleRegistration(const char *name, int (*run)());
};

} // namespace tickwise::testing

#define TICKWISE_REGISTER_TEST(Class, application)                                                                     \
    static const tickwise::testing::TestClassRegistration registrationOf##Class(                                       \
        #Class, tickwise::testing::TestApplication::application,                                                       \
        []() -> std::unique_ptr<QObject> { return std::make_unique<Class>(); });

/// The class needs no display.
#define TICKWISE_TEST(Class) TICKWISE_REGISTER_TEST(Class, core)
/// The class draws or shows widgets.
#define TICKWISE_WIDGET_TEST(Class) TICKWISE_REGISTER_TEST(Class, widgets)
