#include "export/console.h"
#include "export/interrupt.h"
#include "export/program.h"
#include "export/surroundings.h"

int main(int argc, char *argv[])
{
    Export::secureStreams();
    Export::watchForInterrupt();
    QStringList words;
    for (int index = 1; index < argc; ++index)
        words += QString::fromLocal8Bit(argv[index]);
    Export::Console console;
    return int(Export::runProgram(words, console));
}
