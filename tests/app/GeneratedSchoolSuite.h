#pragma once

#include "ConnectionPool.h"
#include "SchoolGenerator.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

/// A suite's school of some size (20,000 copies), generated once for all its cases.
class GeneratedSchoolSuite : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        school_ = new QTemporaryDir;
        SchoolGenerator({20000, 800, 40, 15, 20000, 600, 40, false}).write(school_->filePath("library.db"), school_->filePath("central.db"));
    }
    static void TearDownTestSuite()
    {
        ConnectionPool::shared().clear();
        delete school_;
        school_ = nullptr;
    }
    static QString library() { return school_->filePath("library.db"); }
    static QString central() { return school_->filePath("central.db"); }

private:
    static inline QTemporaryDir *school_ = nullptr;
};
