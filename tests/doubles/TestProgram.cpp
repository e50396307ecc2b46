#include "doubles/TestProgram.h"

#include <QApplication>

#include <cstdio>
#include <map>
#include <string>

namespace tickwise::testing {

namespace {

struct TestClass
{
    TestApplication application;
    std::unique_ptr<QObject> (*make)();
};

// Functions, because registrations of other files may run before this one's variables are made.
std::map<std::string, TestClass> &testClasses()
{
    static std::map<std::string, TestClass> classes;
    return classes;
}

std::map<std::string, int (*)()> &testRoles()
{
    static std::map<std::string, int (*)()> roles;
    return roles;
}

int runClass(const TestClass &testClass, int argc, char **argv)
{
    std::unique_ptr<QCoreApplication> application;
    if (testClass.application == TestApplication::widgets)
        application = std::make_unique<QApplication>(argc, argv);
    else
        application = std::make_unique<QCoreApplication>(argc, argv);
    application->setAttribute(Qt::AA_Use96Dpi, true);
    const std::unique_ptr<QObject> test = testClass.make();
    return QTest::qExec(test.get(), argc, argv);
}

int usage(const char *program)
{
    std::fprintf(stderr, "Usage: %s CLASS [function...]\nClasses:\n", program);
    for (const auto &[name, testClass] : testClasses())
        std::fprintf(stderr, "  %s\n", name.c_str());
    return 2;
}

} // namespace

TestClassRegistration::TestClassRegistration(const char *name, TestApplication application,
                                             std::unique_ptr<QObject> (*make)())
{
    testClasses()[name] = {application, make};
}

TestRoleRegistration::TestRoleRegistration(const char *name, int (*run)())
{
    testRoles()[name] = run;
}

} // namespace tickwise::testing

int main(int argc, char **argv)
{
    using namespace tickwise::testing;
    const std::string name = argc > 1 ? argv[1] : "";
    if (const auto role = testRoles().find(name); role != testRoles().end()) {
        const QCoreApplication application(argc, argv);
        return role->second();
    }
    const auto testClass = testClasses().find(name);
    if (testClass == testClasses().end())
        return usage(argv[0]);
    // Qt Test reads the arguments after the class's name.
    argv[1] = argv[0];
    return runClass(testClass->second, argc - 1, argv + 1);
}
