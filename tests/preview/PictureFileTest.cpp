#include "preview/PictureFile.h"

#include "preview/HangingDrawing.h"
#include "preview/PictureLoader.h"
#include "preview/PictureStream.h"
#include "support/VolumeBuilderBytes.h"
#include "support/desktop/BoxAnswers.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QFile>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <random>

namespace thntfs::test {

namespace {

QByteArray Written(const QImage& image, const char* format) {
    QBuffer buffer;
    QImageWriter writer(&buffer, format);
    EXPECT_TRUE(writer.write(image)) << format;
    return buffer.data();
}

// With what a camera notes that was held upright.
QByteArray Upright(QByteArray jpeg) {
    constexpr const char* kNote = "FFE10022457869660000"
                                  "4D4D002A00000008"
                                  "0001011200030000000100060000"
                                  "00000000";
    return jpeg.insert(2, QByteArray::fromHex(kNote));
}

class PictureFileTest : public ::testing::Test {
protected:
    QString Put(const QByteArray& bytes, const QString& name) {
        QFile file(Folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        EXPECT_EQ(file.write(bytes), bytes.size());
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return file.fileName();
    }

    /// Decoded by another process, as the window has it done.
    QImage Load(const QByteArray& bytes, const QString& name, const DecoderRules& rules = {}) {
        std::optional<QImage> loaded;
        PictureLoader loader([&](const QImage& picture) { loaded = picture; });
        loader.Start(Put(bytes, name), rules);
        EXPECT_TRUE(WaitUntil([&] { return loaded.has_value(); }));
        return loaded.value_or(QImage());
    }

    /// What comes of a decoder that puts out a header and these bytes, and then does these words of the
    /// shell.
    QImage FromDecoder(const PictureHeader& header, const char* bytes, const QByteArray& words) {
        const QString script = Put("#!/bin/sh\ncat\n" + words + '\n', QStringLiteral("decoder"));
        const QByteArray output(reinterpret_cast<const char*>(&header), sizeof header);
        return Load(output + bytes, QStringLiteral("output"), {.Program = script});
    }

    QTemporaryDir Folder;
};

QImage SmallPicture() {
    QImage image(24, 16, QImage::Format_RGB32);
    QPainter(&image).fillRect(image.rect(), QGradient(QGradient::WarmFlame));
    return image;
}

// What damage does: a changed byte or four, a zeroed sector, an end that is missing.
QByteArray Mutated(QByteArray bytes, std::mt19937& random) {
    const auto below = [&random](qsizetype end) {
        return static_cast<qsizetype>(random() % static_cast<std::size_t>(end));
    };
    for (auto changes = 1 + below(4); changes > 0; --changes) {
        bytes[below(bytes.size())] = static_cast<char>(below(256));
    }
    if (below(4) == 0) {
        const qsizetype from = below(bytes.size());
        std::fill(bytes.begin() + from, bytes.begin() + std::min(from + 64, bytes.size()), '\0');
    }
    return below(4) == 0 ? bytes.left(below(bytes.size())) : bytes;
}

} // namespace

TEST_F(PictureFileTest, NamesOfPictures) {
    for (const char16_t* name :
         {u"a.jpg", u"a.JPG", u"ä ö.Jpeg", u".png", u"png", u"x.bmp", u"x.gif", u"x.jfif", u"x.svg"}) {
        EXPECT_TRUE(IsImageName(name)) << QString::fromUtf16(name).toStdString();
    }
    for (const char16_t* name : {u"photo.old.jpg", u"a.b.jpg", u"", u".", u"a.", u"a", u"ajpg", u"a.jpg ",
                                 u"a.txt", u"a.jpg.", u"a..jpg"}) {
        EXPECT_FALSE(IsImageName(name)) << QString::fromUtf16(name).toStdString();
    }
    EXPECT_EQ(PictureCopyName(u"../x/y.JPG").toStdString(), "picture.dat");
    EXPECT_EQ(PictureCopyName(u"y;rm.JPG").toStdString(), "picture.jpg");
}

TEST_F(PictureFileTest, PicturesOfTheLibrarysOwnWriter) {
    const QImage picture = SmallPicture();
    const auto formats = QImageWriter::supportedImageFormats();
    for (const QByteArray& format : formats) {
        const QImage loaded =
            Load(Written(picture, format), QStringLiteral("picture.") + QString::fromLatin1(format));
        EXPECT_EQ(loaded.isNull(), !QImageReader::supportedImageFormats().contains(format)) << format.data();
    }
    QImage large = picture.scaled(400, 300).convertToFormat(QImage::Format_ARGB32_Premultiplied);
    large.setPixel(399, 299, 0x80800000);
    EXPECT_EQ(Load(Written(large, "png"), QStringLiteral("picture.jpg")), large) << "told by its bytes";
    EXPECT_EQ(Load(Upright(Written(picture, "jpg")), QStringLiteral("picture.jpg")).size(), QSize(16, 24));
}

TEST_F(PictureFileTest, WhatIsNoPicture) {
    QImage huge(30000, 30000, QImage::Format_Mono);
    huge.fill(0);
    EXPECT_TRUE(Load(Written(huge, "png"), QStringLiteral("picture.png")).isNull());
    huge = QImage(11000, 11000, QImage::Format_Mono); // 462 MB as pixels of 32 bits
    huge.fill(0);
    EXPECT_FALSE(Load(Written(huge, "png"), QStringLiteral("picture.png")).isNull());
    for (const char* name : {"picture.jpg", "picture.svg", "picture.tga", "picture.ico"}) {
        EXPECT_TRUE(Load({}, QLatin1String(name)).isNull()) << name;
        EXPECT_TRUE(Load("A letter to my aunt.\n", QLatin1String(name)).isNull()) << name;
    }
}

TEST_F(PictureFileTest, DamagedPicturesDoNoHarm) {
    std::mt19937 random(1);
    int drawn = 0;
    int failed = 0;
    for (const char* format : {"png", "jpg", "bmp", "tiff", "webp", "ico", "ppm"}) {
        if (!QImageWriter::supportedImageFormats().contains(format)) {
            continue;
        }
        const QByteArray sound = Written(SmallPicture(), format);
        for (int i = 0; i < 500; ++i) {
            const QByteArray damaged = Mutated(sound, random);
            const QString name = QStringLiteral("picture.") + QLatin1String(format);
            QFile file(Put(damaged, name));
            EXPECT_TRUE(file.open(QIODevice::ReadOnly));
            const QImage picture = i % 100 == 0 ? Load(damaged, name) : LoadPicture(file);
            ++(picture.isNull() ? failed : drawn);
            EXPECT_LE(qint64{picture.width()} * picture.height(), qint64{128} << 20U);
        }
    }
    EXPECT_GT(drawn, 100);
    EXPECT_GT(failed, 100);
}

TEST_F(PictureFileTest, HostilePicturesEndTheirDecoderAlone) {
    QElapsedTimer time;
    time.start();
    const QString name = QStringLiteral("picture.svg");
    EXPECT_TRUE(Load(HangingDrawing(), name, {.Limit = std::chrono::milliseconds(300)}).isNull());
    EXPECT_TRUE(Load("<svg/>", name, {.Program = Folder.filePath(QStringLiteral("none"))}).isNull());
    const PictureHeader small{.Width = 1, .Height = 1};
    EXPECT_EQ(FromDecoder(small, "\x01\x02\x03\xFF", "").pixel(0, 0), 0xFF030201);
    for (const auto& [header, bytes, words] :
         std::vector<std::tuple<PictureHeader, const char*, const char*>>{
             {small, "123", ""},
             {small, "1234", "exit 1"},
             {small, "1234", "kill -SEGV $$"},
             {small, "1234", "yes"},
             {{.Mark = 1, .Width = 1, .Height = 1}, "1234", ""},
             {{.Width = 16384, .Height = 8193}, "", "exec sleep 60"},
             {{.Width = 1 << 30, .Height = 1 << 30}, "", "exec sleep 60"},
         }) {
        EXPECT_TRUE(FromDecoder(header, bytes, words).isNull()) << header.Width << bytes << words;
    }
    EXPECT_LT(time.elapsed(), 8000);
}

} // namespace thntfs::test
