#include "common/Trace.h"
#include "dialer/Dialer.h"

#include <QTest>

class tst_Dialer : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void validation_data();
    void validation();
    void keys_data();
    void keys();
    void deleteLast_data();
    void deleteLast();
};

void tst_Dialer::validation_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("valid");
    QTest::newRow("empty") << QString() << false;
    QTest::newRow("single plus") << u"+"_qs << false;
    QTest::newRow("international with separators") << u"+34 600-123.456"_qs << true;
    QTest::newRow("slash and blank") << u"600/12 34"_qs << true;
    QTest::newRow("parentheses") << u"(600) 123"_qs << false;
    QTest::newRow("19 digits, largest int64") << u"9223372036854775807"_qs << true;
    QTest::newRow("19 digits, beyond int64") << u"9223372036854775808"_qs << false;
    QTest::newRow("20 digits") << u"12345678901234567890"_qs << false;
    QTest::newRow("two plus signs") << u"++34600"_qs << true;
    QTest::newRow("three plus signs") << u"+++34600"_qs << false;
    QTest::newRow("plus then minus") << u"+-5"_qs << true;
    QTest::newRow("only separators") << u"- ./"_qs << false;
    QTest::newRow("plus and separators") << u"+ - "_qs << false;
    QTest::newRow("star") << u"12*3"_qs << false;
    QTest::newRow("hash") << u"#31#"_qs << false;
    QTest::newRow("letters") << u"600abc"_qs << false;
    QTest::newRow("tab is not cleaned") << u"600\t123"_qs << false;
    QTest::newRow("Arabic-Indic digits") << u"\u0661\u0662\u0663"_qs << false;
    QTest::newRow("fullwidth digits") << u"\uFF11\uFF12"_qs << false;
    QTest::newRow("single digit") << u"0"_qs << true;
    QTest::newRow("trailing newline") << u"600\n"_qs << false;
}

void tst_Dialer::validation()
{
    QFETCH(QString, text);
    QFETCH(bool, valid);
    QCOMPARE(Dialer::isValidNumber(text), valid);
    Dialer dialer;
    dialer.isInvalidNumberFromClipBoard = true;
    QCOMPARE(dialer.validate(text), valid);
    QCOMPARE(dialer.display, text);
    QCOMPARE(dialer.isInvalidNumber, !valid);
    QVERIFY2(dialer.isInvalidNumberFromClipBoard, "validation never touches the clipboard warning");
}

// A key sequence: "L" is a long press on the key that follows it, any other letter a tap.
void tst_Dialer::keys_data()
{
    QTest::addColumn<QStringList>("sequence");
    QTest::addColumn<QString>("display");
    QTest::addColumn<bool>("invalid");
    QTest::addColumn<QStringList>("traces");
    QTest::newRow("hold 0 gives plus, next 0 is a digit")
        << QStringList{u"L0"_qs, u"0"_qs, u"0"_qs} << u"+0"_qs << false
        << QStringList{u"long press detected !!!"_qs, u"0"_qs, u"0"_qs};
    QTest::newRow("hold another key does nothing")
        << QStringList{u"L5"_qs, u"5"_qs} << u"5"_qs << false << QStringList{u"5"_qs};
    QTest::newRow("plus alone is invalid")
        << QStringList{u"L0"_qs, u"0"_qs} << u"+"_qs << true << QStringList{u"long press detected !!!"_qs, u"0"_qs};
    QTest::newRow("star makes it invalid")
        << QStringList{u"1"_qs, u"*"_qs, u"2"_qs} << u"1*2"_qs << true << QStringList{u"1"_qs, u"*"_qs, u"2"_qs};
    QTest::newRow("hash makes it invalid") << QStringList{u"#"_qs} << u"#"_qs << true << QStringList{u"#"_qs};
}

void tst_Dialer::keys()
{
    QFETCH(QStringList, sequence);
    QFETCH(QString, display);
    QFETCH(bool, invalid);
    QFETCH(QStringList, traces);

    Trace::Capture capture;
    Dialer dialer;
    bool longPressDetected = false;
    for (const QString &step : sequence) {
        if (step.startsWith(u'L')) {
            Dialer::longPress(step.mid(1), longPressDetected);
        } else {
            dialer.pressKey(step, longPressDetected);
        }
    }
    QCOMPARE(dialer.display, display);
    QCOMPARE(dialer.isInvalidNumber, invalid);
    QCOMPARE(capture.lines(), traces);
}

void tst_Dialer::deleteLast_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::addColumn<bool>("invalid");
    QTest::newRow("empty stays empty and invalid") << QString() << QString() << true;
    QTest::newRow("last digit") << u"6001"_qs << u"600"_qs << false;
    QTest::newRow("back to a valid number") << u"600a"_qs << u"600"_qs << false;
    QTest::newRow("whole emoji with modifier") << u"12\U0001F44D\U0001F3FD"_qs << u"12"_qs << false;
    QTest::newRow("combining accent goes with its letter") << u"1e\u0301"_qs << u"1"_qs << false;
}

void tst_Dialer::deleteLast()
{
    QFETCH(QString, before);
    QFETCH(QString, after);
    QFETCH(bool, invalid);
    Dialer dialer;
    dialer.display = before;
    dialer.deleteLast();
    QCOMPARE(dialer.display, after);
    QCOMPARE(dialer.isInvalidNumber, invalid);
}

QTEST_GUILESS_MAIN(tst_Dialer)
#include "tst_Dialer.moc"
