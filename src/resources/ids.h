// The numbers of all resources, controls, commands, messages and timers. Macros, because the resource compiler reads
// this file, too.
#pragma once

// --- Resources
#define IDI_APP 100
#define IDR_MENU 1001
#define IDR_ACCELERATORS 2000
#define IDD_SETTINGS 3000
#define IDD_FIND 3100
#define IDD_GOTO_LINE 3150
#define IDD_CONDITION 3140
#define IDD_EXCEPTIONS 3170
#define IDD_PROGRAM 3160
#define IDD_RENAME 3180
#define IDD_RECORDING 3210
#define IDD_RECOVERY 3220
#define IDD_OUTSIDE 3230
#define IDD_PROJECT_NEW 3240
#define IDD_FILES_SEARCH 3300
#define IDD_CLOSE_MANY 3520
#define IDD_KEYS 3540
#define IDD_NAME_PLACE 3560

// --- Commands: File
#define IDM_FILE_NEW 1001
#define IDM_FILE_OPEN 1002
#define IDM_FILE_SAVE 1003
#define IDM_FILE_SAVE_AS 1004
#define IDM_FILE_SAVE_ALL 1005
#define IDM_FILE_CLOSE 1006
#define IDM_FILE_CLOSE_ALL 1007
#define IDM_FILE_EXIT 1009
#define IDM_RECENT_FILE_FIRST 1010  // one for each recent file, newest first, up to 1019
#define IDM_RECENT_FILES_NONE 1020
#define IDM_RECENT_FILES_CLEAR 1021
#define IDM_SESSION_OPEN 1022
#define IDM_SESSION_SAVE 1023
#define IDM_SESSION_SAVE_AS 1024
#define IDM_RECENT_SESSIONS_NONE 1025
#define IDM_FILE_RECOVERED 1044        // lists what earlier runs and failed saves have left
#define IDM_RECENT_SESSION_FIRST 1030  // one for each recent session, newest first, up to 1039
// --- Edit
#define IDM_EDIT_UNDO 1101
#define IDM_EDIT_REDO 1102
#define IDM_EDIT_CUT 1103
#define IDM_EDIT_COPY 1104
#define IDM_EDIT_PASTE 1105
#define IDM_EDIT_SELECT_ALL 1106
#define IDM_EDIT_FIND 1107
#define IDM_EDIT_REPLACE 1108
#define IDM_EDIT_GOTO 1109
#define IDM_SEARCH_INCREMENTAL 1063
#define IDM_SEARCH_CLEAR_MARKS 1064
#define IDM_BOOKMARK_TOGGLE 1040
#define IDM_BOOKMARK_NEXT 1041
#define IDM_BOOKMARK_PREVIOUS 1042
#define IDM_BOOKMARKS_CLEAR 1043
#define IDM_EDIT_MATCH 1090
#define IDM_EDIT_COMMENT 1091
#define IDM_EDIT_COMPLETE 1092
#define IDM_EDIT_SNIPPETS 1093
#define IDM_SYMBOL_DEFINITION 1080
#define IDM_SYMBOL_REFERENCES 1081
#define IDM_SYMBOL_RENAME 1082
#define IDM_SYMBOL_IN_DOCUMENT 1083
#define IDM_SYMBOL_IN_PROJECT 1084
#define IDM_VIEW_OUTLINE 1085
#define IDM_PARAMETER_INFO 1096
#define IDM_SHOW_DECLARATION 1097
#define IDM_PEEK_DEFINITION 1098
#define IDM_PEEK_CALLERS 1099
#define IDM_EDIT_FORMAT_DOCUMENT 1230
#define IDM_EDIT_FORMAT_SELECTION 1231
#define IDM_FILES_FIND 1070
#define IDM_FILES_REPLACE 1071
#define IDM_FILES_NEXT 1072
#define IDM_FILES_PREVIOUS 1073
#define IDM_FILES_STOP 1705
// --- Lines, letters and carets
#define IDM_LINES_DUPLICATE 1520
#define IDM_LINES_DELETE 1521
#define IDM_LINES_UP 1522
#define IDM_LINES_DOWN 1523
#define IDM_LINES_JOIN 1524
#define IDM_CASE_UPPER 1525
#define IDM_CASE_LOWER 1526
#define IDM_CASE_TITLE 1527
#define IDM_LINES_SORT 1528
#define IDM_LINES_SORT_DOWN 1529
#define IDM_LINES_UNIQUE 1530
#define IDM_LINES_TRIM 1531
#define IDM_TABS_TO_BLANKS 1532
#define IDM_BLANKS_TO_TABS 1533
#define IDM_CARET_ABOVE 1534
#define IDM_CARET_BELOW 1535
#define IDM_SELECT_NEXT 1536  // the next place of what is selected, as a selection more
#define IDM_SELECT_EACH 1537
#define IDM_SELECT_COLUMNS 1704  // the selection as one of columns, and back
// --- Folding, at the caret and everywhere
#define IDM_FOLD 1538
#define IDM_UNFOLD 1539
#define IDM_FOLD_ALL 1540
#define IDM_UNFOLD_ALL 1541
#define IDM_FOLD_LEVEL_FIRST 1542  // the blocks that are one deep
#define IDM_FOLD_LEVEL_2 1543
#define IDM_FOLD_LEVEL_3 1544
#define IDM_FOLD_LEVEL_4 1545
// --- The form of the file, tabs
#define IDM_ENCODE_UTF8 1546  // the next save writes it
#define IDM_ENCODE_ANSI 1547
#define IDM_ENCODE_UTF16_LE 1548
#define IDM_ENCODE_UTF16_BE 1549
#define IDM_REOPEN_UTF8 1550  // reads the file again as that
#define IDM_REOPEN_ANSI 1551
#define IDM_REOPEN_UTF16_LE 1552
#define IDM_REOPEN_UTF16_BE 1553
#define IDM_ENDING_CRLF 1554
#define IDM_ENDING_LF 1555
#define IDM_ENDING_CR 1556
#define IDM_TAB_WIDTH_2 1557
#define IDM_TAB_WIDTH_3 1558
#define IDM_TAB_WIDTH_4 1559
#define IDM_TAB_WIDTH_8 1560
#define IDM_TAB_INSERTS_TAB 1561
#define IDM_TAB_INSERTS_BLANKS 1562
// --- View
#define IDM_VIEW_FILES_RESULTS 1074
#define IDM_VIEW_TOOLBAR 1201
#define IDM_VIEW_STATUS_BAR 1202
#define IDM_VIEW_OUTPUT 1203
#define IDM_VIEW_WHITESPACE 1204
#define IDM_VIEW_ASM 1255
#define IDM_VIEW_AI 1257
#define IDM_VIEW_WORD_WRAP 1260
#define IDM_VIEW_ZOOM_IN 1261
#define IDM_VIEW_ZOOM_OUT 1262
#define IDM_VIEW_ZOOM_RESET 1263
#define IDM_VIEW_TREE 1050
#define IDM_TREE_REVEAL 1410
#define IDM_VIEW_TERMINAL 1051
#define IDM_VIEW_ERROR_LIST 1052
#define IDM_VIEW_LIGHT_THEME 1277
#define IDM_VIEW_DARK_THEME 1278
#define IDM_STYLE_FIRST 1330
#define IDM_STYLE_CODE 1330
#define IDM_STYLE_STUDIO 1331
#define IDM_STYLE_PLUS 1332
#define IDM_STYLE_SUBLIME 1333
#define IDM_STYLE_CLASSIC 1334
#define IDM_STYLE_FONT 1335
#define IDM_STYLE_OWN 1060
#define IDM_VIEW_ERROR_TEXTS 1450  // behind the lines of the source
#define IDM_VIEW_FOLD 1451         // folds the block at the caret, or unfolds it
#define IDM_OUTPUT_COPY_ALL 1452   // of the output pane, or of the error list that has the keyboard
#define IDM_OUTPUT_CLEAR 1453
#define IDM_PANE_RESIZE 1602  // moves the bars between the panes by keys
#define IDM_PANE_CLOSE 1603   // the one that has the keyboard
#define IDM_PANE_SIZES 1604   // the sizes that the panes have at a first start
// --- Compiler
#define IDM_BUILD 1301
#define IDM_BUILD_RUN 1302
#define IDM_BUILD_STOP 1303
#define IDM_BUILD_CLEAN 1304
#define IDM_BUILD_SYNTAX 1305
#define IDM_USE_KVXA64 1250
#define IDM_USE_KVXB64 1251
#define IDM_USE_KVXA32 1253
#define IDM_USE_KELDORBASIC 1254
#define IDM_USE_KVXC64 1320
#define IDM_RUN_IN_OUTPUT 1980
#define IDM_KEEP_CONSOLE 1670  // changes the setting
#define IDM_NEXT_COMPILER 1061
#define IDM_ERROR_NEXT 1310
#define IDM_ERROR_PREVIOUS 1311
#define IDM_ERROR_SOURCE 1454  // goes from a line of the output or of the error list to its source
#define IDM_PROFILE_DEBUG 1312
#define IDM_PROFILE_RELEASE 1313
#define IDM_PROFILE_FAST 1314
#define IDM_BUILD_ALL 1315
// --- Project
#define IDM_PROJECT_SETTINGS 1401
#define IDM_WORKSPACE_NEW 1402
#define IDM_WORKSPACE_OPEN 1403
#define IDM_WORKSPACE_SAVE 1404
#define IDM_PROJECT_FOLDER 1062
#define IDM_PROJECT_NEW 1405
#define IDM_PROJECT_OPEN 1406
#define IDM_PROJECT_CLOSE 1407
#define IDM_PROJECT_EDIT 1408            // shows the project file as text
#define IDM_PROJECT_SET_MAIN 1409        // the active file becomes the main source
#define IDM_PROJECT_KEEP_ARGUMENTS 1430  // writes the program's arguments into the project file
// --- Debug
#define IDM_DEBUG_START 1902
#define IDM_DEBUG_STOP 1903
#define IDM_DEBUG_STEP_OVER 1904
#define IDM_DEBUG_STEP_INTO 1905
#define IDM_DEBUG_STEP_OUT 1506
#define IDM_DEBUG_BREAKPOINT 1507
// Buttons of the toolbar. The first five do the same as the commands 1901, 1903, 1905, 1904 and 1506.
#define IDM_DEBUG_BUTTON_START 1501
#define IDM_DEBUG_BUTTON_STOP 1502
#define IDM_DEBUG_BUTTON_STEP_INTO 1503
#define IDM_DEBUG_BUTTON_STEP_OVER 1504
#define IDM_DEBUG_BUTTON_STEP_OUT 1505
#define IDM_DEBUG_REGISTERS 1508
#define IDM_DEBUG_CALL_STACK 1509
#define IDM_DEBUG_DISASSEMBLY 1510
#define IDM_DEBUG_MEMORY 1511
#define IDM_DEBUG_CONDITIONAL 1512
#define IDM_DEBUG_BUILD_START 1901
#define IDM_DEBUG_RUN_TO_CURSOR 1906
#define IDM_DEBUG_CONTINUE 1907
#define IDM_DEBUG_PAUSE 1908
#define IDM_DEBUG_ENABLE_BREAKPOINT 1909  // of the caret's line: switches it off and on
#define IDM_DEBUG_REMOVE_BREAKPOINTS 1910
#define IDM_VIEW_DEBUG_PANE 1911
#define IDM_DEBUG_STEPS_FOLLOW 1920
#define IDM_DEBUG_RESTART 1921
#define IDM_DEBUG_SET_NEXT 1922
#define IDM_DEBUG_STEP_INSTRUCTION 1923
#define IDM_DEBUG_STEP_OVER_INSTRUCTION 1924
#define IDM_DEBUG_EXCEPTIONS 1912
#define IDM_DEBUG_PROGRAM 1925
#define IDM_DEBUG_NAME_PLACE 1570  // gives a name to a place of the program's memory
// --- Tools, Help
#define IDM_AI_OPENAI 1701
#define IDM_AI_LMSTUDIO 1702
#define IDM_AI_TRANSCRIBE 1703
#define IDM_AI_DO 1279    // records an instruction, or accepts a replacement that waits
#define IDM_AI_UNDO 1280  // takes it back
#define IDM_AI_EDIT 1962
#define IDM_AI_APPLY 1963
#define IDM_AI_CANCEL 1964
#define IDM_AI_EXPLAIN 1965
#define IDM_AI_FIX 1966
#define IDM_AI_COPY_CODE 1967
#define IDM_AI_INSERT_CODE 1968
#define IDM_AI_NEW_CHAT 1969
#define IDM_HELP_ABOUT 1601
#define IDM_HELP_KEYS 1563
#define IDM_HELP_DOCUMENTATION 1640
// --- Internal commands
#define IDM_NEXT_TAB 1950
#define IDM_PREVIOUS_TAB 1951
#define IDM_NEXT_PANE 1985
#define IDM_PREVIOUS_PANE 1986
#define IDM_NAV_BACK 1952
#define IDM_NAV_FORWARD 1953
#define IDM_FIND_NEXT 1954
#define IDM_FIND_PREVIOUS 1955
#define IDM_COMPILER_MENU 1956
#define IDM_TAB_CLOSE_OTHERS 1957
#define IDM_TAB_COPY_PATH 1958
#define IDM_FILE_RELOAD 1959
#define IDM_TOOLBAR_MORE 1960
#define IDM_TAB_CLOSE_RIGHT 1961
#define IDM_TAB_REOPEN 1470       // opens the document that was closed last
#define IDM_TAB_LIST 1471         // the list of all tabs
#define IDM_TAB_RECENT 1472       // the tab that was shown before, with a list while Ctrl is held
#define IDM_TAB_RECENT_BACK 1473  // the same from the other end
#define IDM_TAB_PIN 1474          // pins the active tab, or takes the pin off
#define IDM_TAB_CLOSE_SAVED 1475  // all without changes
#define IDM_TAB_COPY_NAME 1476
#define IDM_TAB_OPEN_FOLDER 1477
#define IDM_TAB_NUMBER_FIRST 1480  // shows the first tab, and so on up to the ninth, 1488
#define IDM_TAB_LAST 1489
#define IDM_SAMPLE_FIRST 1610  // one for each sample of the program's folder, up to 1619
#define IDM_QUICK_OPEN 1075
#define IDM_COMMAND_PALETTE 1076

// --- Child controls of the main window
#define IDC_TABS 2001
#define IDC_TOOLBAR 2011
#define IDC_STATUS_BAR 2012
#define IDC_OUTPUT 2101
#define IDC_SPLIT_OUTPUT 2201
#define IDC_SPLIT_ASM 2202
#define IDC_ASM 2203
#define IDC_SPLIT_TREE 2204
#define IDC_SPLIT_DEBUG 2205
#define IDC_AI_CHAT 2300
#define IDC_AI_INPUT 2301
#define IDC_AI_SEND 2302
#define IDC_STICKY_HEADER 2303
#define IDC_TERMINAL 2304
#define IDC_ERROR_LIST 2305
#define IDC_PROJECT_TREE 2306
#define IDC_TAB_SWITCHER 3530  // the list of tabs while Ctrl is held
#define IDC_DEBUG_PANE 2307
#define IDC_FIND_BAR 2320
// Children of the search bar.
#define IDC_BAR_FIELD 2321
#define IDC_BAR_CASE 2322
#define IDC_BAR_WORD 2323
#define IDC_BAR_REGEX 2324
#define IDC_BAR_COUNT 2325
#define IDC_BAR_PREVIOUS 2326
#define IDC_BAR_NEXT 2327
#define IDC_BAR_CLOSE 2328
#define IDC_OUTLINE_PANE 2340
#define IDC_OUTLINE_FILTER 2341
#define IDC_OUTLINE_ORDER 2342  // by place or by name
#define IDC_OUTLINE_LIST 2343
#define IDC_FILES_PANE 2330
// Children of the pane with the results of a search over files.
#define IDC_FILES_LIST 2331
#define IDC_FILES_AGAIN 2332  // stops the search while it runs
#define IDC_FILES_REPLACE_NOW 2333
#define IDC_FILES_UNREADABLE 2334
// Children of the debug pane.
#define IDC_DEBUG_TABS 2401
#define IDC_DEBUG_LIST 2402        // list view, for all views but the memory
#define IDC_DEBUG_TEXT 2403        // Scintilla, for the memory
#define IDC_DEBUG_ADDRESS 2404     // address field of memory and disassembly
#define IDC_DEBUG_MORE 2405        // button for the tabs that have no room
#define IDC_PANE_CLOSE_FIRST 3580  // one close button for each PaneId, up to 3588
#define IDC_PANE_TITLE 3589        // all titles of panes
#define IDC_SPLIT_ERROR_LIST 3590
#define IDC_SPLIT_RESULTS 3591
#define IDC_SPLIT_OUTLINE 3592
// The page that stands in the place of the editor while no file is open, and its children.
#define IDC_START_PAGE 3593
#define IDC_START_NEW 3594
#define IDC_START_OPEN 3595
#define IDC_START_PROJECT 3596
#define IDC_START_SESSION 3597
#define IDC_START_HINT 3598
#define IDC_START_LIST 3599
// The first editor. Each tab that is ever opened gets the next number.
#define IDC_EDITOR_FIRST 5000

// --- Controls of the settings dialog
#define IDC_SETTINGS_SEARCH 2700
#define IDC_SETTINGS_PAGES 2701
#define IDC_SETTINGS_APPLY 2702
#define IDC_SETTINGS_EXPORT 2703
#define IDC_SETTINGS_IMPORT 2704
#define IDC_SETTINGS_RESET 2705
#define IDC_SETTINGS_SEARCH_LABEL 2706
#define IDC_SETTINGS_NOTHING 2707
#define IDC_SETTINGS_PAGE_FIRST 2750  // one for each page, in their order
// Controls of a page: SETTINGS_PARTS numbers for each item, of which the first is its field.
#define IDC_SETTINGS_ITEM_FIRST 6000
#define SETTINGS_PARTS 8

// --- Controls of the go-to-line dialog
#define IDC_GOTO_LINE 3151
#define IDC_GOTO_LINE_COUNT 3152
#define IDC_GOTO_COLUMN 3153
#define IDC_GOTO_PROCEDURE 3155

// --- Controls of the keyboard map
#define IDC_KEYS_FILTER 3541
#define IDC_KEYS_LIST 3542
#define IDC_GOTO_SHOWN 3543  // of the go-to-line dialog: the caret's place as the status bar has it

// --- Controls of the find dialog
#define IDC_FIND_WHAT 3101
#define IDC_FIND_WITH 3102
#define IDC_FIND_CASE 3103
#define IDC_FIND_WORD 3104
#define IDC_FIND_REGEX 3105
#define IDC_FIND_NEXT 3106
#define IDC_FIND_PREVIOUS 3107
#define IDC_FIND_REPLACE 3108
#define IDC_FIND_REPLACE_ALL 3109
#define IDC_FIND_STATUS 3110
#define IDC_FIND_WITH_LABEL 3111
#define IDC_FIND_SELECTION 3112
#define IDC_FIND_WRAP 3113
#define IDC_FIND_KEEP_CASE 3114
#define IDC_FIND_COUNT 3115
#define IDC_FIND_MARK_ALL 3116

// --- Controls of the dialog of a search over files
// --- Rename symbol
#define IDC_RENAME_WHAT 2344
#define IDC_RENAME_PLACES 2345
#define IDC_RENAME_NAME 2346
#define IDC_RENAME_PROBLEM 2347
#define IDC_FILES_WHAT 3301
#define IDC_FILES_WITH 3302
#define IDC_FILES_CASE 3304
#define IDC_FILES_WORD 3305
#define IDC_FILES_REGEX 3306
#define IDC_FILES_SCOPE 3307
#define IDC_FILES_FOLDER 3308
#define IDC_FILES_BROWSE 3309
#define IDC_FILES_ONLY 3310
#define IDC_FILES_EXCEPT 3311
#define IDC_FILES_SUBFOLDERS 3312
#define IDC_FILES_GITIGNORE 3313
#define IDC_FILES_HIDDEN 3314
#define IDC_FILES_RECENT 3315
#define IDC_FILES_STATUS 3316
#define IDC_FILES_REPLACING 3317
#define IDC_FILES_FOLDER_LABEL 3318
#define IDC_FILES_PRESERVE 3319

// --- Controls of the conditional-breakpoint dialog
#define IDC_CONDITION_TEXT 3141
#define IDC_CONDITION_PLACE 3142
#define IDC_CONDITION_PROBLEM 3143

// --- Controls of the dialog of exceptions
#define IDC_EXCEPTIONS_LIST 3171
#define IDC_EXCEPTIONS_PASS 3172
#define IDC_EXCEPTIONS_STOP 3173
#define IDC_EXCEPTIONS_CODE 3174
#define IDC_EXCEPTIONS_ADD 3175
#define IDC_EXCEPTIONS_DEFAULTS 3176

// --- Controls of the dialog for the program's arguments
#define IDC_PROGRAM_ARGUMENTS 3161
#define IDC_PROGRAM_FOLDER 3162
#define IDC_PROGRAM_PROBLEM 3163

// --- Controls of the dialog that names a place
#define IDC_NAME_PLACE_WHERE 3561
#define IDC_NAME_PLACE_NAME 3562
#define IDC_NAME_PLACE_PLACE 3563
#define IDC_NAME_PLACE_KIND 3564
#define IDC_NAME_PLACE_VALUE 3565
#define IDC_NAME_PLACE_PROBLEM 3566
#define IDC_NAME_PLACE_REMOVE 3567

// --- Controls of the dialog that records
#define IDC_RECORDING_STATE 3211
#define IDC_RECORDING_TIME 3212
#define IDC_RECORDING_LEVEL 3213
#define IDC_RECORDING_HOST 3214

// --- Controls of the dialog for a new project
#define IDC_PROJECT_NAME 3241
#define IDC_PROJECT_FOLDER 3242
#define IDC_PROJECT_BROWSE 3243
#define IDC_PROJECT_COMPILER 3244
#define IDC_PROJECT_SAMPLE 3245
#define IDC_PROJECT_RESULT 3246

// --- Controls of the list of recovered files
#define IDC_RECOVERY_WHAT 3221
#define IDC_RECOVERY_LIST 3222
#define IDC_RECOVERY_DIFFERENCE 3223
#define IDC_RECOVERY_RESTORE 3224
#define IDC_RECOVERY_BESIDE 3225
#define IDC_RECOVERY_DISCARD 3226
#define IDC_RECOVERY_DIFFERENCE_LABEL 3227
#define IDC_RECOVERY_CRASH 3620

// --- Controls of the question about files that other programs have changed
#define IDC_OUTSIDE_WHAT 3231
#define IDC_OUTSIDE_LIST 3232
#define IDC_OUTSIDE_DIFFERENCE_LABEL 3233
#define IDC_OUTSIDE_DIFFERENCE 3234
#define IDC_OUTSIDE_FIRST 3235
#define IDC_OUTSIDE_SECOND 3236
#define IDC_OUTSIDE_COMPARE 3237

// --- Controls of the question about the changes of several documents
#define IDC_CLOSE_WHAT 3521
#define IDC_CLOSE_LIST 3522
#define IDC_CLOSE_SAVE 3523
#define IDC_CLOSE_DISCARD 3524

#define TIMER_SOURCE_MARKS 30               // of the main window: marks the diagnostics of a build in the sources
#define TIMER_OUTSIDE 23                    // of the main window: renews what is watched, waits to ask about changes
#define MSG_OUTSIDE_SEEN (0x8000 + 92)      // to the main window; wParam: FileWatchReport*, deleted by the receiver
#define MSG_OUTSIDE_COMPARED (0x8000 + 93)  // to the question; wParam: a block with a difference

#define TIMER_SNAPSHOTS 22                  // of the main window: copies the text of unsaved documents
#define MSG_PROJECT_SEEN (0x8000 + 125)     // to the main window; wParam: ProjectSight*, deleted by the receiver
#define MSG_SNAPSHOT_WRITTEN (0x8000 + 90)  // to the main window; wParam: SnapshotEnd*, deleted by the receiver
// To the list of recovered files. wParam: Comparison*, deleted by the receiver.
#define MSG_RECOVERY_COMPARED (0x8000 + 91)

// --- The window of the file finder and of the command palette
#define IDC_PEEK 3420
#define IDC_PEEK_TEXT 3421
#define IDC_PEEK_LIST 3422
#define IDC_QUICK_OPEN 3400
#define IDC_QUICK_FIELD 3401
#define IDC_QUICK_LIST 3402
#define TIMER_QUICK_PREVIEW 13           // shows what the selected row is about
#define MSG_QUICK_FILES (0x8000 + 75)    // wParam: a block for ProjectFilesOnBlock
#define MSG_QUICK_FOUND (0x8000 + 76)    // wParam: FuzzyFound*, deleted by the receiver
#define MSG_PEEK_TEXT (0x8000 + 100)     // to the peek; wParam: PeekFileText*, deleted by the receiver
#define MSG_QUICK_PREVIEW (0x8000 + 77)  // wParam: QuickPreviewText*, deleted by the receiver

// --- Messages of the main window (WM_USER = 0x0400, WM_APP = 0x8000). The receiver frees a heap block in wParam.
#define MSG_BUILD_OUTPUT (0x0400 + 100)    // wParam: heap wide text, lParam: colour (0 = default)
#define MSG_BUILD_FINISHED (0x0400 + 101)  // wParam: exit code of the compiler
#define MSG_STARTUP (0x0400 + 200)         // completes start-up; posted once when the window is created
#define MSG_REINIT_EDITOR (0x0400 + 201)   // wParam: tab index, lParam: id of its document or 0
#define MSG_FOCUS_EDITOR (0x8000 + 1)      // gives the active editor the focus
#define MSG_AI_REPLY (0x8000 + 3)          // wParam: heap UTF-8 reply or null, lParam: chat or replacement
#define MSG_AI_PIECES (0x8000 + 60)        // pieces of a streamed reply wait
#define MSG_AI_TEXT_BACK (0x8000 + 63)     // undo or redo has changed a replaced text; wParam: it was accepted
#define MSG_AI_ENDED (0x8000 + 34)         // wParam: AiRequestEnd*, deleted by the receiver
#define MSG_DEBUG_LAUNCH (0x8000 + 11)     // starts the program of a finished debug build under the debugger
#define MSG_SYMBOLS_SCANNED (0x8000 + 78)  // wParam: symbols of a document, for SymbolsOnScanned
#define MSG_SYMBOLS_FILES (0x8000 + 79)    // wParam: symbols of files, for SymbolsOnFilesScanned
#define MSG_SYMBOLS_PLACES (0x8000 + 80)   // wParam: places of a name, for ReferencesOnFound
#define MSG_COMPILERS_SEEN (0x8000 + 24)   // wParam: what CompilersLook found, for CompilersOnLooked
#define MSG_TREE_ITEMS (0x8000 + 10)       // to the project tree; wParam: TreeListing*, deleted by the receiver
#define MSG_TREE_CHANGED (0x8000 + 120)    // to the project tree; wParam: TreeChanges*, deleted by the receiver
#define MSG_TREE_SETTLE (0x8000 + 121)     // to the project tree: something has changed in it
#define MSG_TREE_NAMED (0x8000 + 122)      // to the project tree: the user has ended the change of a name
#define MSG_SETTINGS_LOOKED (0x8000 + 40)  // to the settings dialog; wParam: PathSight*, deleted by the receiver
#define MSG_SETTINGS_MODELS (0x8000 + 42)  // to the settings dialog; wParam: ModelsReply*, deleted by the receiver
#define MSG_SETTINGS_TESTED (0x8000 + 41)  // to the settings dialog; wParam: CompilerReply*, deleted by the receiver
#define MSG_TERMINAL_NAMES (0x8000 + 150)  // to the terminal line; wParam: TerminalNames*, deleted by the receiver
#define MSG_FILES_ENDED (0x8000 + 70)      // to the pane of results; wParam: the number of the search that has ended
#define MSG_FILES_TEXTS (0x8000 + 71)      // to the pane of results: copy more of the open documents for a search
#define MSG_FILES_REPLACED (0x8000 + 72)   // to the pane of results: the files that are not open have been replaced in
// A key that was put off while a debugged program started. wParam: virtual key, lParam: LATE_KEY bits
#define MSG_LATE_KEY (0x8000 + 31)
#define LATE_KEY_CONTROL 1
#define LATE_KEY_SHIFT 2
#define LATE_KEY_ALT 4

// --- Timers of the main window
#define TIMER_AUTO_SAVE 1
#define TIMER_SESSION 2
#define TIMER_OUTPUT 3  // shows queued build output in batches
#define TIMER_BUILD 4   // shows the progress of a build in the status bar
#define TIMER_DEBUG 5   // polls the debuggee for its next event
// Looks for the console of a program that was just started under the debugger.
#define TIMER_DEBUG_CONSOLE 6
#define TIMER_POSITION 7      // shows the caret's place in the status bar
#define TIMER_AI 8            // shows the progress of the assistant's requests in the status bar
#define TIMER_SYMBOLS 14      // scans edited documents for their symbols in pauses of the typing
#define TIMER_AI_MARKS 21     // updates the marks of a replacement that waits
#define TIMER_AI_PIECES 9     // shows what has come of streamed replies
#define TIMER_TAB_SWITCH 32   // looks whether Ctrl is still held, and shows the list of tabs
#define TIMER_FIND 12         // goes on with what the search bar looks for
#define TIMER_DEBUG_ALIVE 37  // looks whether a stopped program was ended by another one
#define TIMER_PANES 35        // a pane has a new size, to which its text is to be fitted
#define TIMER_FOCUS 32770
