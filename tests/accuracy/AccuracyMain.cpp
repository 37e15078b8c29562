// SPDX-License-Identifier: MIT
// Writes docs/accuracy.md: tools/accuracy.

#include "tests/accuracy/AccuracyTrial.h"

#include <QFile>
#include <QTextStream>

#include <cstdio>
#include <vector>

namespace {

std::vector<AccuracyTrial> trials()
{
    struct Size
    {
        const char* name;
        std::uint32_t width;
        std::uint32_t height;
    };
    std::vector<AccuracyTrial> trials;
    std::uint32_t seed = 0;
    for (const Size& size : {Size{"1.3 megapixels", 1280, 1024}, Size{"5 megapixels", 2592, 1944},
                             Size{"20 megapixels", 5472, 3648}}) {
        for (const Mosaic& mosaic : {Mosaic::mono(), Mosaic::bayer()}) {
            AccuracyTrial trial;
            trial.name = QString::fromLatin1(size.name) +
                         (mosaic.isBayer() ? QStringLiteral(", Bayer") : QStringLiteral(", mono"));
            trial.width = size.width;
            trial.height = size.height;
            trial.mosaic = mosaic;
            trial.seed = ++seed;
            trials.push_back(trial);
        }
    }
    return trials;
}

QString accuracyRow(const QString& name, const Accuracy& accuracy)
{
    return QStringLiteral("| %1 | %2 | %3 | %4 | %5 | %6 | %7 | %8 |\n")
        .arg(name)
        .arg(accuracy.clearHot)
        .arg(accuracy.found)
        .arg(accuracy.missed)
        .arg(accuracy.reportedFalsely)
        .arg(accuracy.unclear)
        .arg(accuracy.precision(), 0, 'f', 4)
        .arg(accuracy.recall(), 0, 'f', 4);
}

QString page(const std::vector<AccuracyTrial>& trials)
{
    QString page = QStringLiteral(
        R"(# Accuracy

What `detect` finds, and what `detect --like-editor` finds, held against simulated sensors whose every
pixel is known. This page is written by one command, and comes out the same on every machine:

```
tools/accuracy
```

Each sensor has 1,600 pixels at random places (near the limit, above it up to saturation, below it, and
exactly on whole grey levels, where cutting to whole numbers decides), bright pixels in the corners, along
the edges and in the rows and columns beside them, and clusters of neighbours of any and of the same
colour. The four places of the Bayer pattern have levels of their own. Noise is made of whole numbers from
a seed, and grows with the level. Ten frames of 8 bits, threshold 40.

A pixel is clear when its true mean, with rounding and saturation, is further than five standard errors
of the mean of ten frames from where hot pixels begin: a grey level above the mean of its plane plus the
threshold, because a pixel's mean is cut to a whole number before it is compared. Whether any other pixel
is found is chance; the column "unclear" counts those that were. What is reported and is no pixel of the
sensor counts as false.

## detect

| sensor | clear hot pixels | found | missed | false | unclear | precision | recall |
|---|---|---|---|---|---|---|---|
)");
    for (const AccuracyTrial& trial : trials) {
        page += accuracyRow(trial.name, trial.exact);
    }
    page += QStringLiteral(R"(
## detect --like-editor

| sensor | clear hot pixels | found | missed | false | unclear | precision | recall |
|---|---|---|---|---|---|---|---|
)");
    for (const AccuracyTrial& trial : trials) {
        page += accuracyRow(trial.name, trial.likeEditor);
    }
    page += QStringLiteral(R"(
## Every difference and its reason

The editor's walk leaves a row one step late: at x = width it takes the first pixel of the next row for
one of this row, and reports it there. As many steps as it loses so are missing at the end of the image.
The mean of a plane comes from the same walk, so it may be another whole number than that of the plane.

| sensor | reported at x = width | end of the image left out | another mean of the plane | without a reason |
|---|---|---|---|---|
)");
    for (const AccuracyTrial& trial : trials) {
        const Differences& differences = trial.differences;
        page += QStringLiteral("| %1 | %2 | %3 | %4 | %5 |\n")
                    .arg(trial.name)
                    .arg(differences.behindRows)
                    .arg(differences.endLeftOut)
                    .arg(differences.otherLimit)
                    .arg(differences.unexplained);
    }
    return page;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("vorn_accuracy FILE: writes the page about accuracy.\n", stderr);
        return 2;
    }
    std::vector<AccuracyTrial> all = trials();
    for (AccuracyTrial& trial : all) {
        std::printf("%s ...\n", qPrintable(trial.name));
        std::fflush(stdout);
        trial.run();
    }
    QFile file(QString::fromLocal8Bit(argv[1]));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
        file.write(page(all).toUtf8()) < 0) {
        std::fprintf(stderr, "%s: %s\n", argv[1], qPrintable(file.errorString()));
        return 1;
    }
    return 0;
}
