-- What wixl 0.101 cannot express, one statement a line; package.py runs them with msibuild.
-- The old version is removed before the new one is installed, within the transaction: a failure rolls both back.
UPDATE `InstallExecuteSequence` SET `Sequence`=1501 WHERE `Action`='RemoveExistingProducts'
-- Attributes of a component: 4 its key path is a registry value, 16 permanent, 64 transitive (a repair evaluates its
-- condition again), 256 64-bit.
-- The reader's components are always removed, but without the rows that belong to another reader by then.
-- An installation by the system (group policy, a deployment server) has no user to write settings for.
UPDATE `Component` SET `Attributes`=20, `Condition`='AUTOUPDATEVALUE AND UserSID<>"S-1-5-18"' WHERE `Component`='UserAutoUpdate'
UPDATE `Component` SET `Attributes`=20, `Condition`='TOOLBARVALUE AND UserSID<>"S-1-5-18"' WHERE `Component`='UserToolbar'
UPDATE `Component` SET `Attributes`=324, `Condition`='NOT OTHERREADER OR REMOVE="ALL"' WHERE `Component`='ReaderClass' AND `Attributes`=260
UPDATE `Component` SET `Attributes`=68, `Condition`='NOT OTHERREADER OR REMOVE="ALL"' WHERE `Component`='ReaderClass' AND `Attributes`=4
UPDATE `Component` SET `Attributes`=324, `Condition`='NOT OTHERREADER OR REMOVE="ALL"' WHERE `Component`='BeaconMapiProp.Library64'
UPDATE `Component` SET `Attributes`=68, `Condition`='NOT OTHERREADER OR REMOVE="ALL"' WHERE `Component`='BeaconMapiProp.Library32'
-- Properties of the command line or of the registry search that must reach the installer's service.
UPDATE `Property` SET `Value`='WIX_DOWNGRADE_DETECTED;WIX_UPGRADE_DETECTED;OTHERBITNESS;NEWEROTHERBITNESS;STARTANALYSISDELAY;MAXDOCUNITS;LOGGING;LOGGINGVALUE;AUTOUPDATE;AUTOUPDATEVALUE;TOOLBAR;TOOLBARVALUE;INSTALLDIR;REMEMBEREDDIR;READERCLASS;READERFILE;READERPROGRAM' WHERE `Property`='SecureCustomProperties'
