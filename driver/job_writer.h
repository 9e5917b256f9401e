// job_writer.h - the process-wide job writer as the document and page flow uses it: made at its first use, given the working
// configuration, and skipped silently where there is none.
#pragma once

#include "driver/Pdev.h"

namespace morvil {

// Creates the writer if there is none and hands it the working configuration.
void setPrinterConfiguration();

// Copies the instance's configuration into the working one.
void useConfigurationOf(const PDEV& pdev);

// Finishes the page's job, when there is a writer.
void completeJob();

// Keeps the driver's version in the main ini, where the partner programs look for it.
void DriverInfo2MorvilConf();

}  // namespace morvil
