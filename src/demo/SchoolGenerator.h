#pragma once

#include <QString>

/// How big a generated school is.
struct SchoolSize {
    int copies = 2000;          // catalogue rows (physical copies)
    int learners = 600;         // current learners (plus a few archived and flagged ones)
    int educators = 40;
    int staff = 15;
    int historicLoans = 2500;   // returned loans
    int openLoans = 150;        // of which about a quarter are overdue
    int reservations = 40;
    bool photos = true;         // write a LearnerPhotos folder

    static SchoolSize demo() { return SchoolSize{}; }
    /// The school the benchmarks run on.
    static SchoolSize large() { return SchoolSize{100000, 3000, 150, 60, 1000000, 2500, 1500, false}; }
};

/// Writes a fictional school: the school administration database (name,
/// grades, classes, learners, educators, staff, reason codes) and the library
/// database (catalogue with categories, subjects, authors, publishers, series,
/// languages and keywords; loan settings; loans, fines and reservations in
/// every state). Everything is generated from a fixed seed, with dates
/// relative to today, so two runs on the same day give the same school.
class SchoolGenerator {
public:
    explicit SchoolGenerator(SchoolSize size, unsigned seed = 2026);

    /// Creates both database files (they must not exist) and, when the size
    /// asks for photos and photoFolder is given, one photo per learner in it.
    /// Throws AppError on failure.
    void write(const QString &libraryPath, const QString &centralPath, const QString &photoFolder = QString());

    static QString schoolName() { return QStringLiteral("Hillview Combined School"); }

private:
    void writeCentral(const QString &path, const QString &photoFolder);
    void writeLibrary(const QString &path);

    SchoolSize size_;
    unsigned seed_;
    int learnerCount_ = 0; // learner rows written, including archived ones
};
