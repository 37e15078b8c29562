// SPDX-License-Identifier: MIT
#include "darkframes/FrameFile.h"

#include "tests/darkframes/FrameFiles.h"

#include <QDir>
#include <QFileInfo>

namespace {

class FrameFile : public FrameFiles
{
protected:
    /// Names without the folder.
    [[nodiscard]] QStringList listed(const QStringList& paths) const
    {
        QStringList names;
        for (const QString& file : darkframes::frameFiles(paths)) {
            names.append(QFileInfo(file).fileName());
        }
        return names;
    }
    std::string listError(const QString& path) const
    {
        return errorOf([](const QString& each) { darkframes::frameFiles({each}); }, path);
    }
    void makeFrames(const QStringList& names) const
    {
        for (const QString& name : names) {
            write(name, "x");
        }
    }
};

} // namespace

TEST_F(FrameFile, IsKnownByItsContentWhateverItsName)
{
    const QImage narrow = narrowFrame(12, 5);
    const QImage wide = wideFrame(12, 5);
    const auto values = [](const QString& file) {
        return valuesOf(darkframes::readFrame(file).image);
    };
    const auto renamed = [this](const QString& file) { return write("renamed", contentOf(file)); };
    EXPECT_EQ(values(renamed(save("a.png", wide))), valuesOf(wide));
    EXPECT_EQ(values(renamed(save("a.tif", wide))), valuesOf(wide));
    EXPECT_EQ(values(renamed(save("a.bmp", narrow))), valuesOf(narrow));
    EXPECT_EQ(values(write("renamed", pgm(wide, 65535))), valuesOf(wide));
}

TEST_F(FrameFile, IsRefusedWithOneLineWhenItIsNoImage)
{
    const std::string message = "FILE: not an image of a kind that is read here";
    EXPECT_EQ(errorOf(darkframes::readFrame, write("a.png", "hello, world, how are you?")),
              message);
    EXPECT_EQ(errorOf(darkframes::readFrame, write("a.txt", "x")), message);
    EXPECT_EQ(errorOf(darkframes::readFrame, write("a.png", "")), "FILE: empty");
    EXPECT_EQ(errorOf(darkframes::readFrame, path("missing.png")), "FILE: there is no such file");
    EXPECT_EQ(errorOf(darkframes::readFrame, path("")), "FILE: not a file");
    EXPECT_EQ(errorOf(darkframes::readFrame, write("a.ppm", "P6 1 1 255\nabc")),
              "FILE: a colour image; a dark frame is grey");
}

TEST_F(FrameFile, OfAKindWithoutAReaderGetsOneClearLine)
{
    const QString fits = write("a.fits", fits16(wideFrame(4, 2)));
    const QString raw = write("a.nef", QByteArray(3000, 'x'));
#ifdef VORN_HAS_CFITSIO
    EXPECT_EQ(errorOf(darkframes::readFrame, fits), "no error");
#else
    EXPECT_EQ(errorOf(darkframes::readFrame, fits),
              "FILE: a FITS file, and this build was made without CFITSIO");
#endif
#ifdef VORN_HAS_LIBRAW
    EXPECT_EQ(errorOf(darkframes::readFrame, raw), "FILE: not a camera raw file that LibRaw knows");
#else
    EXPECT_EQ(errorOf(darkframes::readFrame, raw),
              "FILE: a camera raw file, and this build was made without LibRaw");
#endif
}

TEST_F(FrameFile, ReadersAreNamed)
{
    const QStringList lines = darkframes::readerLines();
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines[0], "PNG, TIFF, BMP, PGM");
#ifdef VORN_HAS_CFITSIO
    EXPECT_TRUE(lines[1].startsWith("FITS by CFITSIO "));
#else
    EXPECT_EQ(lines[1], "FITS not at all (made without CFITSIO)");
#endif
#ifdef VORN_HAS_LIBRAW
    EXPECT_TRUE(lines[2].startsWith("camera raw files by LibRaw "));
#else
    EXPECT_EQ(lines[2], "camera raw files not at all (made without LibRaw)");
#endif
}

TEST_F(FrameFile, ListsAreInTheOrderOfTheNames)
{
    makeFrames({"b.png", "a.png", "c.TIF"});
    EXPECT_EQ(listed({path("c.TIF"), path("a.png"), path("b.png")}),
              (QStringList{"a.png", "b.png", "c.TIF"}));
    EXPECT_EQ(listed({path("")}), (QStringList{"a.png", "b.png", "c.TIF"}));
    EXPECT_EQ(listed({path("?.png")}), (QStringList{"a.png", "b.png"}));
}

TEST_F(FrameFile, ListsTakeFromAFolderWhatHasTheNameOfAFrame)
{
    makeFrames({"a.png", "a.FITS", "a.fits.gz", "a.fit.fz", "a.dng", "a.CR2", "a.pgm", "a.bmp",
                "a.tiff", "notes.txt", "list.json", "png", ".png.swp"});
    QDir().mkpath(path("folder.png"));
    EXPECT_EQ(listed({path("")}), (QStringList{"a.CR2", "a.FITS", "a.bmp", "a.dng", "a.fit.fz",
                                               "a.fits.gz", "a.pgm", "a.png", "a.tiff"}));
}

TEST_F(FrameFile, ListsHoldEachFileOnce)
{
    makeFrames({"a.png", "b.png"});
    EXPECT_EQ(listed({path(""), path("a.png"), path("*.png")}), (QStringList{"a.png", "b.png"}));
}

TEST_F(FrameFile, ListsTakeAFileWhoseNameLooksLikeAPattern)
{
    makeFrames({"a[1].png", "a1.png"});
    EXPECT_EQ(listed({path("a[1].png")}), QStringList{"a[1].png"});
}

TEST_F(FrameFile, ListsTakeWhatIsNamedWhateverItsName)
{
    makeFrames({"frame.dat"});
    EXPECT_EQ(listed({path("frame.dat")}), QStringList{"frame.dat"});
    EXPECT_EQ(listed({path("*.dat")}), QStringList{"frame.dat"});
}

TEST_F(FrameFile, ListsRefuseWhatIsNotThere)
{
    EXPECT_EQ(listError(path("missing.png")), "FILE: there is no such file");
    EXPECT_EQ(listError(path("*.png")), "FILE: there is no such file");
    EXPECT_EQ(listError(path("missing/")), "FILE: there is no such file");
    QDir().mkpath(path("empty"));
    EXPECT_EQ(listError(path("empty")), "FILE: there are no frames in this folder");
}
