// Gives each file of some folders to a fuzz target once: the corpus as an ordinary test, without a fuzzer and with any
// compiler. A property that does not hold ends the process below the name of its file.

#include "fuzzinput.h"

#include <QDirIterator>
#include <QFile>

int main(int argc, char *argv[])
{
    int inputs = 0;
    for (int i = 1; i < argc; ++i) {
        QDirIterator files(QFile::decodeName(argv[i]), QDir::Files);
        while (files.hasNext()) {
            QFile file(files.next());
            if (!file.open(QIODevice::ReadOnly))
                qFatal("%s cannot be read", qPrintable(file.fileName()));
            const QByteArray input = file.readAll();
            std::printf("%s\n", qPrintable(file.fileName()));
            std::fflush(stdout);
            LLVMFuzzerTestOneInput(reinterpret_cast<const unsigned char *>(input.constData()),
                                   static_cast<size_t>(input.size()));
            ++inputs;
        }
    }
    std::printf("%d inputs\n", inputs);
    return inputs > 0 ? 0 : 1;
}
