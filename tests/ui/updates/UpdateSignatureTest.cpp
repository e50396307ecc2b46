#include "ui/updates/UpdateSignature.h"

#include "doubles/SigningKey.h"
#include "doubles/TestProgram.h"

#include <QFile>
#include <QTemporaryDir>

using namespace tickwise;
using namespace tickwise::test;

class UpdateSignatureTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void checks_data();
    void checks();
    void unreadableFile();
    void knownAnswer();
    void isSignature_data();
    void isSignature();

private:
    QString write(const QByteArray &content);

    QTemporaryDir m_folder;
};

QString UpdateSignatureTest::write(const QByteArray &content)
{
    QFile file(m_folder.filePath(QStringLiteral("package")));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("the package cannot be written");
    return file.fileName();
}

void UpdateSignatureTest::checks_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("signature");
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<SignatureCheck>("expected");
    const SigningKey key;
    const SigningKey other;
    const QByteArray package = "the package";
    const QByteArray large(3 * 1024 * 1024, 'x');
    const QByteArray good = key.sign(package);
    const auto row = [](const char *name, const QByteArray &content, const QByteArray &signature,
                        const QByteArray &publicKey, SignatureCheck expected) {
        QTest::newRow(name) << content << signature << publicKey << expected;
    };
    row("good", package, good, key.publicKey(), SignatureCheck::valid);
    row("good and large", large, key.sign(large), key.publicKey(), SignatureCheck::valid);
    row("good and empty", {}, key.sign({}), key.publicKey(), SignatureCheck::valid);
    row("one byte changed", "the packagE", good, key.publicKey(), SignatureCheck::mismatch);
    row("one byte less", "the packag", good, key.publicKey(), SignatureCheck::mismatch);
    row("one byte more", "the package\n", good, key.publicKey(), SignatureCheck::mismatch);
    row("empty instead", {}, good, key.publicKey(), SignatureCheck::mismatch);
    row("signed with another key", package, other.sign(package), key.publicKey(), SignatureCheck::mismatch);
    row("checked with another key", package, good, other.publicKey(), SignatureCheck::mismatch);
    row("not signed", package, {}, key.publicKey(), SignatureCheck::missing);
    row("signature cut", package, good.left(40), key.publicKey(), SignatureCheck::malformed);
    row("signature not base64", package, QByteArray(88, '!'), key.publicKey(), SignatureCheck::malformed);
    row("no key", package, good, {}, SignatureCheck::malformed);
    row("key cut", package, good, key.publicKey().left(20), SignatureCheck::malformed);
    row("key of zeros", package, QByteArray(64, '\0').toBase64(), QByteArray(32, '\0').toBase64(),
        SignatureCheck::mismatch);
}

void UpdateSignatureTest::checks()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, signature);
    QFETCH(QByteArray, key);
    QFETCH(SignatureCheck, expected);
    QCOMPARE(checkSignature(write(content), signature, key), expected);
}

void UpdateSignatureTest::unreadableFile()
{
    const SigningKey key;
    const QString missing = m_folder.filePath(QStringLiteral("missing"));
    QCOMPARE(checkSignature(missing, key.sign("x"), key.publicKey()), SignatureCheck::unreadable);
    QCOMPARE(checkSignature(m_folder.path(), key.sign("x"), key.publicKey()), SignatureCheck::unreadable);
}

void UpdateSignatureTest::knownAnswer()
{
    // RFC 8032, section 7.1, test 2.
    const QByteArray key = QByteArray::fromHex("3d4017c3e843895a92b70aa74d1b7ebc9c982ccf2ec4968cc0cd55f12af4660c");
    const QByteArray signature =
        QByteArray::fromHex("92a009a9f0d4cab8720e820b5f642540a2b27b5416503f8fb3762223ebdb69da"
                            "085ac1e43e15996e458f3613d0f11d8c387b2eaeb4302aeeb00d291612bb0c00");
    QCOMPARE(checkSignature(write("\x72"), signature.toBase64(), key.toBase64()), SignatureCheck::valid);
}

void UpdateSignatureTest::isSignature_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("expected");
    QTest::newRow("64 bytes") << QByteArray(64, 's').toBase64() << true;
    QTest::newRow("63 bytes") << QByteArray(63, 's').toBase64() << false;
    QTest::newRow("65 bytes") << QByteArray(65, 's').toBase64() << false;
    QTest::newRow("blanks") << QByteArray(QByteArray(64, 's').toBase64() + " \n") << false;
    QTest::newRow("nothing") << QByteArray() << false;
}

void UpdateSignatureTest::isSignature()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, expected);
    QCOMPARE(tickwise::isSignature(text), expected);
}

TICKWISE_TEST(UpdateSignatureTest)
#include "UpdateSignatureTest.moc"
