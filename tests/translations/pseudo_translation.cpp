// pseudo_translation IN.ts OUT.ts: writes a catalogue that translates every text of IN.ts into itself, wrapped in
// ⟦ ⟧ and lengthened by a third. Loaded instead of a real language it shows, on every screen, which texts went through
// the translation (they carry the marks) and whether the layouts hold longer texts. Its input is the catalogue lupdate
// makes from the sources at build time, so it cannot fall behind them.
#include <QCoreApplication>
#include <QFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <cstdio>

namespace {

struct Message
{
    QString source;
    QString comment;
    bool numerus = false;
};

struct Context
{
    QString name;
    QList<Message> messages;
};

QString pseudo(const QString &text)
{
    const qsizetype padding = qMax<qsizetype>(1, (text.size() + 2) / 3);
    return u"⟦" + text + QString(padding, QChar(0x00b7)) + u"⟧";
}

bool read(const QString &path, QList<Context> &contexts)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    QXmlStreamReader xml(&file);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) {
            continue;
        }
        if (xml.name() == u"context") {
            contexts.append(Context());
        } else if (contexts.isEmpty()) {
            continue;
        } else if (xml.name() == u"name") {
            contexts.last().name = xml.readElementText();
        } else if (xml.name() == u"message") {
            Message message;
            message.numerus = xml.attributes().value(QLatin1StringView("numerus")) == u"yes";
            contexts.last().messages.append(message);
        } else if (contexts.last().messages.isEmpty()) {
            continue;
        } else if (xml.name() == u"source") {
            contexts.last().messages.last().source = xml.readElementText();
        } else if (xml.name() == u"comment") {
            contexts.last().messages.last().comment = xml.readElementText();
        }
    }
    return !xml.hasError();
}

bool write(const QString &path, const QList<Context> &contexts)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        return false;
    }
    QXmlStreamWriter xml(&file);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeDTD(u"<!DOCTYPE TS>"_qs);
    xml.writeStartElement(u"TS"_qs);
    xml.writeAttribute(u"version"_qs, u"2.1"_qs);
    xml.writeAttribute(u"language"_qs, u"en"_qs); // English plural rules: one and other
    for (const Context &context : contexts) {
        xml.writeStartElement(u"context"_qs);
        xml.writeTextElement(u"name"_qs, context.name);
        for (const Message &message : context.messages) {
            xml.writeStartElement(u"message"_qs);
            if (message.numerus) {
                xml.writeAttribute(u"numerus"_qs, u"yes"_qs);
            }
            xml.writeTextElement(u"source"_qs, message.source);
            if (!message.comment.isEmpty()) {
                xml.writeTextElement(u"comment"_qs, message.comment);
            }
            xml.writeStartElement(u"translation"_qs);
            if (message.numerus) {
                xml.writeTextElement(u"numerusform"_qs, pseudo(message.source));
                xml.writeTextElement(u"numerusform"_qs, pseudo(message.source));
            } else {
                xml.writeCharacters(pseudo(message.source));
            }
            xml.writeEndElement();
            xml.writeEndElement();
        }
        xml.writeEndElement();
    }
    xml.writeEndDocument();
    return !xml.hasError();
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) {
        std::fputs("usage: pseudo_translation IN.ts OUT.ts\n", stderr);
        return 2;
    }
    QList<Context> contexts;
    if (!read(arguments[1], contexts)) {
        std::fprintf(stderr, "pseudo_translation: cannot read %s\n", qPrintable(arguments[1]));
        return 1;
    }
    if (!write(arguments[2], contexts)) {
        std::fprintf(stderr, "pseudo_translation: cannot write %s\n", qPrintable(arguments[2]));
        return 1;
    }
    return 0;
}
