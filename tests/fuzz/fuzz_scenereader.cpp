// A whole scene file.

#include "fuzzharness.h"
#include "sceneusage.h"

#include "libmodel/files/scenereader.h"
#include "libmodel/files/scenewriter.h"
#include "libmodel/scene/scene.h"
#include "support/noprogress.h"

#include <QBuffer>
#include <QByteArray>
#include <QRegularExpression>

using namespace Model;
using TestSupport::require;

namespace {

/// For the frames and images of one scene: enough for most, and little enough to be quick.
constexpr qint64 memoryLimit = qint64(256) << 20;

FileResult read(Scene &scene, QByteArray file, QString *error)
{
    QBuffer buffer(&file);
    require(buffer.open(QIODevice::ReadOnly), "a buffer can be opened");
    TestSupport::NoProgress progress;
    SceneReader reader(&scene, progress);
    reader.setMemoryLimit(memoryLimit);
    const FileResult result = reader.read(&buffer);
    *error = reader.errorString();
    return result;
}

QByteArray written(Scene &scene)
{
    QBuffer buffer;
    require(buffer.open(QIODevice::WriteOnly), "a buffer can be opened");
    TestSupport::NoProgress progress;
    require(SceneWriter(&scene, progress).write(&buffer) == FileResult::Success, "a scene can be written");
    return buffer.data();
}

/// The file without what six digits of an angle may change: a tiny one wears off from one time to the next.
QString withoutRotations(const QByteArray &file)
{
    static const QRegularExpression rotation(
        QStringLiteral("( xOffset=\"-?0\" yOffset=\"-?0\")? rotationDeg=\"[^\"]*\""));
    QString text = QString::fromUtf8(file);
    return file.contains(" rotationDeg=") ? text.remove(rotation) : text;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray file = QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size));
    Scene scene;
    QString error;
    const FileResult result = read(scene, file, &error);
    require(result != FileResult::Cancelled, "nobody has cancelled");
    if (result == FileResult::Error) {
        static const QRegularExpression form(QStringLiteral("^[^\n]+\nLine \\d+, column \\d+$"),
                                             QRegularExpression::DotMatchesEverythingOption);
        require(form.match(error).hasMatch(), "an error says what is wrong, and where");
        return 0;
    }
    TestSupport::requireNothingWrong(TestSupport::brokenAfterReading(scene));

    const QByteArray first = written(scene);
    Scene again;
    const bool isReadable = read(again, first, &error) == FileResult::Success;
    require(isReadable, qUtf8Printable(QStringLiteral("what the program writes it can read: ") + error));
    TestSupport::requireNothingWrong(TestSupport::brokenAfterReading(again));
    const QByteArray second = written(again);
    require(second == first || withoutRotations(second) == withoutRotations(first),
            "writing once more gives the same file");

    TestSupport::use(scene, qHash(first));
    return 0;
}
