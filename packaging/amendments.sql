-- What wixl 0.101 has no word for, one statement a line; package.py runs them with msibuild.
-- The old version goes before the new one comes, within the transaction: a failure brings it back.
UPDATE `InstallExecuteSequence` SET `Sequence`=1501 WHERE `Action`='RemoveExistingProducts'
-- A component's attributes: 4, a registry value shows that it is there; 16, it stays when the product goes; 64, whether
-- it shall be there is asked again when the product is repaired; 256, it is of 64 bits.
-- The reader's components go whatever is there, without the rows that are another's by then.
-- An installation by the system (group policy, a deployment server) has no user to write settings for.
UPDATE `Component` SET `Attributes`=20, `Condition`='AUTOUPDATEVALUE AND UserSID<>"S-1-5-18"' WHERE `Component`='UserAutoUpdate'
UPDATE `Component` SET `Attributes`=20, `Condition`='TOOLBARVALUE AND UserSID<>"S-1-5-18"' WHERE `Component`='UserToolbar'
UPDATE `Component` SET `Attributes`=324, `Condition`='NOT OTHERREADER OR REMOVE="ALL"' WHERE `Component`='ReaderClass' AND `Attributes`=260
UPDATE `Component` SET `Attributes`=68, `Condition`='NOT OTHERREADER OR REMOVE="ALL"' WHERE `Component`='ReaderClass' AND `Attributes`=4
UPDATE `Component` SET `Attributes`=324, `Condition`='NOT OTHERREADER OR REMOVE="ALL"' WHERE `Component`='BeaconMapiProp.Library64'
UPDATE `Component` SET `Attributes`=68, `Condition`='NOT OTHERREADER OR REMOVE="ALL"' WHERE `Component`='BeaconMapiProp.Library32'
-- Given on the command line, or found in the registry, these reach the installer's service too.
UPDATE `Property` SET `Value`='WIX_DOWNGRADE_DETECTED;WIX_UPGRADE_DETECTED;OTHERBITNESS;STARTANALYSISDELAY;MAXDOCUNITS;LOGGING;AUTOUPDATE;AUTOUPDATEVALUE;TOOLBAR;TOOLBARVALUE;INSTALLDIR;READERCLASS;READERFILE;READERPROGRAM' WHERE `Property`='SecureCustomProperties'
