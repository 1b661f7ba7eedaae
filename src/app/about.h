// The items of the Help menu that belong to no other folder. UI thread.
#pragma once

void AboutShow();          // what the program is, of what it is made, and where it keeps its files
void DocumentationShow();  // the first page of the documentation beside the program, in the browser
