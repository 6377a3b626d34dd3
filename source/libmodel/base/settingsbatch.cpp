#include "libmodel/base/settingsbatch.h"

#include <QSettings>

#include <memory>

namespace Model {

namespace {

int openBatches = 0;
std::unique_ptr<QSettings> openStore;

} // namespace

SettingsBatch::SettingsBatch()
{
    ++openBatches;
}

SettingsBatch::~SettingsBatch()
{
    if (--openBatches == 0)
        openStore.reset();
}

QSettings &SettingsBatch::store()
{
    if (!openStore)
        openStore = std::make_unique<QSettings>();
    return *openStore;
}

} // namespace Model
