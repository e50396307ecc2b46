#include "ui/controls/Spring.h"

#include "doubles/TestProgram.h"

#include <cmath>

using namespace tickwise;

namespace {

using Seconds = std::chrono::duration<double>;

/// The same oscillator, integrated in small steps.
double integrated(const Spring &spring, double until)
{
    const double frequency = 2 * M_PI / spring.response;
    const double step = 1e-6;
    double position = 0;
    double speed = 0;
    for (double time = 0; time < until; time += step) {
        speed += step * (frequency * frequency * (1 - position) - 2 * spring.dampingFraction * frequency * speed);
        position += step * speed;
    }
    return position;
}

} // namespace

class SpringTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void followsTheOscillator_data();
    void followsTheOscillator();
    void startsAtRest();
    void overshootsOnlyWhenUnderdamped();
    void settles_data();
    void settles();
};

void SpringTest::followsTheOscillator_data()
{
    QTest::addColumn<double>("response");
    QTest::addColumn<double>("damping");
    QTest::addColumn<double>("time");
    for (const double damping : {0.3, 0.85, 1.0, 1.6}) {
        for (const double time : {0.02, 0.07, 0.15, 0.4}) {
            QTest::addRow("damping %g, %g s", damping, time) << 0.22 << damping << time;
        }
    }
}

void SpringTest::followsTheOscillator()
{
    QFETCH(double, response);
    QFETCH(double, damping);
    QFETCH(double, time);
    const Spring spring{response, damping};
    QVERIFY(std::abs(spring.positionAt(Seconds(time)) - integrated(spring, time)) < 1e-3);
}

void SpringTest::startsAtRest()
{
    const Spring spring{0.18, 0.85};
    QCOMPARE(spring.positionAt(Seconds(0)), 0.0);
    QCOMPARE(spring.positionAt(Seconds(-1)), 0.0);
    QVERIFY(spring.positionAt(Seconds(1e-4)) < 1e-4);
}

void SpringTest::overshootsOnlyWhenUnderdamped()
{
    const auto highest = [](double damping) {
        double most = 0;
        for (int ms = 0; ms < 2000; ++ms)
            most = std::max(most, Spring{0.22, damping}.positionAt(Seconds(ms / 1000.0)));
        return most;
    };
    QVERIFY(highest(0.85) > 1.001);
    QVERIFY(highest(1.0) <= 1.0);
    QVERIFY(highest(1.5) <= 1.0);
}

void SpringTest::settles_data()
{
    QTest::addColumn<double>("damping");
    for (const double damping : {0.2, 0.85, 1.0, 2.0})
        QTest::addRow("damping %g", damping) << damping;
}

void SpringTest::settles()
{
    QFETCH(double, damping);
    const Spring spring{0.22, damping};
    const Seconds end = spring.settlingTime();
    QVERIFY(std::abs(1 - spring.positionAt(end - Seconds(0.005))) >= 0.01);
    for (int ms = 0; ms < 3000; ++ms)
        QVERIFY(std::abs(1 - spring.positionAt(end + Seconds(ms / 1000.0))) < 0.01);
}

TICKWISE_TEST(SpringTest)
#include "SpringTest.moc"
