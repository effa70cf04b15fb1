// The tree and the list side by side in a shown window on the engine double, with the views'
// reader in place and every notice of the reader and the views recorded.
#pragma once

#include "CImageReader.h"
#include "TestFiles.h"
#include "ViewsTestSupport.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <gtest/gtest.h>
#include <vector>

// The reader's and the views' notices, in the vector of codes given as context.
inline void RecordCode(uint32_t nCode, const char16_t*, void* pContext) {
    static_cast<std::vector<uint32_t>*>(pContext)->push_back(nCode);
}

class ImagePanes : public ::testing::Test {
protected:
    ImagePanes() : tree(&doc), list(&doc) {
        auto* pLayout = new QHBoxLayout(&window);
        pLayout->addWidget(&tree);
        pLayout->addWidget(&list);
        window.resize(800, 400);
        window.show();
        list.SetTreeView(&tree);
        tree.OnInitialUpdate();
        reader.SetCallback(RecordCode, &codes);
        reader.SetPump([](void*) { QCoreApplication::processEvents(); }, nullptr);
        list.SetFrameCallback(RecordCode, &codes);
        tree.SetFrameCallback(RecordCode, &codes);
        g_pImageReader = &reader;
    }
    ~ImagePanes() override { g_pImageReader = nullptr; }
    ImagePanes(const ImagePanes&) = delete;
    ImagePanes& operator=(const ImagePanes&) = delete;

    // The engine double's listing written as an image of that path, opened in the list.
    QString OpenListing(const std::filesystem::path& image, const std::string& listing) {
        testsupport::WriteFile(image, {listing.begin(), listing.end()});
        const QString path = QString::fromStdString(image.string());
        EXPECT_EQ(list.OpenImageFile(path), qmz::kOk);
        return path;
    }

    testsupport::TempDir dir;
    TestDocument doc;
    QWidget window;
    CFolderTreeView tree;
    CFileListView list;
    CImageReader reader{QStringLiteral(FAKEQMZ_PATH)};
    std::vector<uint32_t> codes;
};
