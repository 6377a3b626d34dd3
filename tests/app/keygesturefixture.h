#pragma once

#include "keystage.h"
#include "support/isolatedstore.h"

#include <memory>

/// A stage for keys in each test, and a look after each at whether anything is stuck.
class KeyGestureFixture : public QObject
{
    Q_OBJECT

protected:
    std::unique_ptr<IsolatedStore> m_store;
    std::unique_ptr<KeyStage> m_stage;

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();
};
