#include "app/Application.h"

#include <QApplication>

int main(int argc, char **argv)
{
    if (!tickwise::prepareProcess())
        return 1;
    const QApplication qtApplication(argc, argv);
    return tickwise::Application({}).run();
}
