#include "common/Trace.h"
#include "dialer/Dialer.h"

#include <QTest>

class tst_Dialer : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void validation_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("valid");
        QTest::newRow("empty") << QString() << false;
        QTest::newRow("single plus") << u"+"_qs << false;
        QTest::newRow("single digit") << u"0"_qs << true;
        QTest::newRow("international with separators") << u"+34 600-123.456/78"_qs << true;
        QTest::newRow("parentheses") << u"(600) 123"_qs << false;
        QTest::newRow("19 digits, largest int64") << u"9223372036854775807"_qs << true;
        QTest::newRow("19 digits, beyond int64") << u"9223372036854775808"_qs << false;
        QTest::newRow("20 digits") << u"12345678901234567890"_qs << false;
        QTest::newRow("two plus signs") << u"++34600"_qs << true;
        QTest::newRow("three plus signs") << u"+++34600"_qs << false;
        QTest::newRow("plus then minus") << u"+-5"_qs << true;
        QTest::newRow("plus and separators") << u"+ - "_qs << false;
        QTest::newRow("hash") << u"#31#"_qs << false;
        QTest::newRow("letters") << u"600abc"_qs << false;
        QTest::newRow("tab is not cleaned") << u"600\t123"_qs << false;
        QTest::newRow("trailing newline") << u"600\n"_qs << false;
        QTest::newRow("Arabic-Indic digits") << u"\u0661\u0662\u0663"_qs << false;
    }
    void validation()
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

    // A key sequence: "L" is a long press on the key that follows it, "<" the delete key, anything else a tap. The
    // traces are the lines written, joined by commas.
    void keys_data()
    {
        QTest::addColumn<QStringList>("sequence");
        QTest::addColumn<QString>("display");
        QTest::addColumn<bool>("invalid");
        QTest::addColumn<QString>("traces");
        QTest::newRow("hold 0 gives plus, next 0 is a digit")
            << QStringList{u"L0"_qs, u"0"_qs, u"0"_qs} << u"+0"_qs << false << u"long press detected !!!,0,0"_qs;
        QTest::newRow("hold another key does nothing") << QStringList{u"L5"_qs, u"5"_qs} << u"5"_qs << false << u"5"_qs;
        QTest::newRow("plus alone is invalid")
            << QStringList{u"L0"_qs, u"0"_qs} << u"+"_qs << true << u"long press detected !!!,0"_qs;
        QTest::newRow("star makes it invalid")
            << QStringList{u"1"_qs, u"*"_qs, u"2"_qs} << u"1*2"_qs << true << u"1,*,2"_qs;
        QTest::newRow("delete on empty stays empty and invalid")
            << QStringList{u"<"_qs} << QString() << true << QString();
        QTest::newRow("delete back to a valid number")
            << QStringList{u"6"_qs, u"0"_qs, u"0"_qs, u"a"_qs, u"<"_qs} << u"600"_qs << false << u"6,0,0,a"_qs;
        QTest::newRow("delete a whole emoji with modifier")
            << QStringList{u"12"_qs, u"\U0001F44D\U0001F3FD"_qs, u"<"_qs} << u"12"_qs << false
            << u"12,\U0001F44D\U0001F3FD"_qs;
        QTest::newRow("delete an accent with its letter")
            << QStringList{u"1e\u0301"_qs, u"<"_qs} << u"1"_qs << false << u"1e\u0301"_qs;
    }
    void keys()
    {
        QFETCH(QStringList, sequence);
        QFETCH(QString, display);
        QFETCH(bool, invalid);
        QFETCH(QString, traces);
        Trace::Capture capture;
        Dialer dialer;
        bool longPressDetected = false;
        for (const QString &step : sequence) {
            if (step == u"<") {
                dialer.deleteLast();
            } else if (step.startsWith(u'L')) {
                Dialer::longPress(step.mid(1), longPressDetected);
            } else {
                dialer.pressKey(step, longPressDetected);
            }
        }
        QCOMPARE(dialer.display, display);
        QCOMPARE(dialer.isInvalidNumber, invalid);
        QCOMPARE(capture.lines().join(u','), traces);
    }
};

QTEST_GUILESS_MAIN(tst_Dialer)
#include "tst_Dialer.moc"
