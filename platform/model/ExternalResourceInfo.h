#pragma once

#include <QString>

// The description of a stock resource (a music track, a picture, a video from a
// collection): who made it, where it comes from and on which terms it may be used.
struct ExternalResourceInfo
{
    QString title;           // the resource's own name
    QString artist;          // its author
    QString artistUrl;       // the author's page; may be empty
    QString source;          // the collection or site it comes from
    QString sourceUrl;       // may be empty
    QString license;         // the licence's name ("CC BY 4.0")
    QString licenseUrl;      // the licence text; may be empty
    bool commercialUse = false; // whether the licence allows commercial use
};
