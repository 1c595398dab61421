// SPDX-License-Identifier: Apache-2.0
#include "host/documents/hoPreferences.h"

namespace
{
const char* const placeSetting = "remember.place";
const char* const recentSetting = "remember.recent";
const char* const offerSetting = "offerKey";
const char* const signedSetting = "signedDocuments";
const char* const jobsSetting = "jobs";
const char* const textSetting = "textPoints";
}  // namespace

hoPreferences hoPreferences::from(const hoSettings& settings)
{
    hoPreferences preferences;
    preferences._isPlaceRemembered = settings.number(placeSetting, 1, 0, 1) == 1;
    preferences._areRecentRemembered = settings.number(recentSetting, 1, 0, 1) == 1;
    preferences._isKeyOffered = settings.number(offerSetting, 1, 0, 1) == 1;
    const long last = static_cast<long>(hoSignedDocuments::KeepAll);
    preferences._signedDocuments = static_cast<hoSignedDocuments>(settings.number(signedSetting, 0, 0, last));
    preferences._jobs = static_cast<int>(settings.number(jobsSetting, 0, 0, mostJobs));
    preferences._textPoints = static_cast<int>(settings.number(textSetting, 0, leastTextPoints, mostTextPoints));
    return preferences;
}

void hoPreferences::writeTo(hoSettings& settings) const
{
    settings.setNumber(placeSetting, _isPlaceRemembered ? 1 : 0);
    settings.setNumber(recentSetting, _areRecentRemembered ? 1 : 0);
    settings.setNumber(offerSetting, _isKeyOffered ? 1 : 0);
    settings.setNumber(signedSetting, static_cast<long>(_signedDocuments));
    settings.setNumber(jobsSetting, _jobs);
    settings.setNumber(textSetting, _textPoints);
}
