// Writes the help page of keyboard shortcuts:  make-shortcut-page FILE

#include "libmodel/actions/shortcutpage.h"

#include <QFile>

#include <cstdio>

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fputs("usage: make-shortcut-page FILE\n", stderr);
        return 2;
    }
    const QByteArray page = Model::shortcutPage().toUtf8();
    QFile file(QFile::decodeName(argv[1]));
    if (!file.open(QIODevice::WriteOnly) || file.write(page) != page.size() || !file.flush()) {
        std::fprintf(stderr, "make-shortcut-page: %s: %s\n", argv[1], qPrintable(file.errorString()));
        return 1;
    }
    return 0;
}
