<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en">
<context>
    <name>CommonMessage</name>
    <message>
        <source>ok</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>cancel</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>caution</source>
        <translation>Caution</translation>
    </message>
    <message>
        <source>warning</source>
        <translation>Warning</translation>
    </message>
    <message>
        <source>close</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>no_registration_yubiKey</source>
        <translation>After this deletion no token opens an account any more, and a token is no longer demanded at sign-in.</translation>
    </message>
    <message>
        <source>cr_failure_alert</source>
        <translation>The token's challenge-response slot is not set up, the token was pulled out, or the privileged service does not answer. Nothing was registered.

Check that the token is plugged in and that one of its slots is programmed for challenge-response (HMAC-SHA1), then try again. If it still fails, check that the Vantro Standalone service is installed.</translation>
    </message>
    <message>
        <source>unexpected_change_setting</source>
        <translation>The settings could not be read, because the settings document was changed or damaged outside this tool. They were reset: no token is registered any more, and the service was asked to demand none at sign-in. Before you sign out, try a second sign-in. The damaged document was kept beside the new one, with ".invalid" at the end of its name.</translation>
    </message>
    <message>
        <source>install_after_alert_message</source>
        <translation>Before you begin</translation>
    </message>
    <message>
        <source>install_after_alert_info</source>
        <translation>This tool changes how people sign in to this computer. It works only for administrators:

• Your account must be a member of the administrators' group. If it is not, run "adduser NAME sudo" as root, with your account's name, and sign in again.
• The Vantro Standalone service must be installed.

On its very first start the tool closes when you close this message. Start it again then.</translation>
    </message>
    <message>
        <source>do_not_display</source>
        <translation>Do not show this message again</translation>
    </message>
</context>
<context>
    <name>StartMessage</name>
    <message>
        <source>already_open_heading</source>
        <translation>Vantro Standalone is open already</translation>
    </message>
    <message>
        <source>already_open_by</source>
        <translation>%1 has it open on this computer. Two windows would overwrite each other's changes, so this one does not open.

Ask %1 to close it, then start it again.</translation>
    </message>
    <message>
        <source>already_open</source>
        <translation>Another account has it open on this computer. Two windows would overwrite each other's changes, so this one does not open.

Have it closed there, then start it again.</translation>
    </message>
    <message>
        <source>document_unreadable_heading</source>
        <translation>The settings can't be read</translation>
    </message>
    <message>
        <source>document_unreadable</source>
        <translation>The settings document "%1" can't be read: %2. Nothing was changed, and the tool closes.

• Your account must be a member of the administrators' group. If it is not, run "adduser NAME sudo" as root, with your account's name, and sign in again.
• If it is, have root see to it that the document and its folder are there and can be read, then start the tool again.</translation>
    </message>
    <message>
        <source>document_kept_aside</source>
        <translation>The settings document "%1" was there but could not be read. It was kept as "%2", nothing in it was lost, and a new document without any token took its place. The tool closes.

To go on with the old settings, have root make that file readable, check it, and give it its old name again. To begin anew, start the tool again.</translation>
    </message>
    <message>
        <source>document_not_written_heading</source>
        <translation>Changes are not saved</translation>
    </message>
    <message>
        <source>document_not_written</source>
        <translation>The settings document "%1" can't be written. You see the settings, but what you change now is lost when the tool closes.

Close the tool, have root see to it that your account may write to the document's folder and that the disk is not full, then start it again.</translation>
    </message>
    <message>
        <source>lock_unusable_heading</source>
        <translation>Vantro Standalone can't be opened</translation>
    </message>
    <message>
        <source>lock_unusable</source>
        <translation>The file "%1" keeps two windows from overwriting each other's changes, and it can't be used: %2. So the tool does not open.

Have root remove what stands under this name, then start the tool again.</translation>
    </message>
    <message>
        <source>document_not_kept_heading</source>
        <translation>The damaged settings can't be kept</translation>
    </message>
    <message>
        <source>document_not_kept</source>
        <translation>The settings document "%1" was changed or damaged outside this tool, and it can neither be copied nor renamed: %2. Nothing was changed, and the tool closes.

Have root see to it that your account may write to the document's folder and that the disk is not full, then start the tool again.</translation>
    </message>
    <message>
        <source>defaults_not_stored_heading</source>
        <translation>This start can't be remembered</translation>
    </message>
    <message>
        <source>defaults_not_stored</source>
        <translation>The file "%1" can't be written, so the tool takes every start for the first one after its installation, and closes.

See to it that you may write to that folder and that the disk is not full, then start the tool again.</translation>
    </message>
</context>
<context>
    <name>UserViewMessage</name>
    <message>
        <source>yubiKey_is_not_connected</source>
        <translation>No token is connected. Plug in the YubiKey that you want to register.</translation>
    </message>
    <message>
        <source>already_allocated_key</source>
        <translation>This token is already assigned to the chosen account.</translation>
    </message>
    <message>
        <source>not_selected_for_deletion</source>
        <translation>No user key is selected. Close this dialog and select the keys that you want to delete in the list.</translation>
    </message>
</context>
<context>
    <name>MasterKeyViewMessage</name>
    <message>
        <source>yubiKey_is_not_connected</source>
        <translation>No token is connected. Plug in the YubiKey that you want to make a master key.</translation>
    </message>
    <message>
        <source>already_allocated_key</source>
        <translation>This token is already a master key.</translation>
    </message>
    <message>
        <source>not_selected_for_deletion</source>
        <translation>No master key is selected. Close this dialog and select the keys that you want to delete in the list.</translation>
    </message>
</context>
<context>
    <name>AdminViewMessage</name>
    <message>
        <source>yubiKey_is_not_connected</source>
        <translation>No token is connected. Plug in the YubiKey that you want to make an administrator key.</translation>
    </message>
    <message>
        <source>already_allocated_key</source>
        <translation>This token is already an administrator key.</translation>
    </message>
    <message>
        <source>not_selected_for_deletion</source>
        <translation>No administrator key is selected. Close this dialog and select the keys that you want to delete in the list.</translation>
    </message>
    <message>
        <source>no_registration_admin_yubiKey</source>
        <translation>After this deletion there is no administrator key any more: the tool no longer asks for a token when it starts, and anyone who can start it can change its settings.</translation>
    </message>
</context>
<context>
    <name>LoginAuthAlertMessage</name>
    <message>
        <source>not_connected_yubikey</source>
        <translation>No token is connected. Plug in an administrator key and try again.</translation>
    </message>
    <message>
        <source>not_admin_key</source>
        <translation>This token is not an administrator key. Plug in an administrator key and try again.</translation>
    </message>
    <message>
        <source>auth_failure</source>
        <translation>The token could not be checked. Plug in one administrator key and no other token, touch it if it blinks, and try again.</translation>
    </message>
</context>
<context>
    <name>ServiceFailure</name>
    <message>
        <source>no-token</source>
        <translation>The service found no token. Plug the token in and try again.</translation>
    </message>
    <message>
        <source>no-token-with-serial</source>
        <translation>The service found no token with this serial number: it was pulled out or exchanged. Plug it in and try again.</translation>
    </message>
    <message>
        <source>no-keyboard-interface</source>
        <translation>The token offers no OTP application, which challenge-response belongs to. Switch that on with the token's configuration program, then try again.</translation>
    </message>
    <message>
        <source>token-busy</source>
        <translation>The token is busy with another request. Try again in a moment.</translation>
    </message>
    <message>
        <source>token-gone</source>
        <translation>The token was pulled out while it was being asked. Plug it in, leave it plugged in, and try again.</translation>
    </message>
    <message>
        <source>device-not-allowed</source>
        <translation>The service may not open the token's device. Have root run "systemctl restart com.vantro.Standalone1", then try again.</translation>
    </message>
    <message>
        <source>transfer-failed</source>
        <translation>The connection to the token was disturbed. Plug the token into another USB port and try again.</translation>
    </message>
    <message>
        <source>no-answer</source>
        <translation>The token did not answer in time. Plug it into another USB port and try again.</translation>
    </message>
    <message>
        <source>bad-answer</source>
        <translation>The token's answer was damaged. Plug it into another USB port and try again.</translation>
    </message>
    <message>
        <source>slot-not-programmed</source>
        <translation>No slot of the token is programmed for challenge-response. Program one of them (HMAC-SHA1), then try again.</translation>
    </message>
    <message>
        <source>not-touched</source>
        <translation>The token was not touched in time. Try again, and touch it as soon as it blinks.</translation>
    </message>
    <message>
        <source>claims-another</source>
        <translation>A token with this serial number is registered already, and this one does not answer as that one does. If it is the same token and its slot was programmed anew, delete all its keys first, then try again. Otherwise do not use it: it passes itself off as another.</translation>
    </message>
    <message>
        <source>no-record</source>
        <translation>The service has no record of this token. Use another token to sign in, delete the keys of this one, and register it again.</translation>
    </message>
    <message>
        <source>record-unusable</source>
        <translation>The service's record of this token is damaged or not safe. Use another token to sign in, delete the keys of this one, and register it again.</translation>
    </message>
    <message>
        <source>wrong-response</source>
        <translation>The token does not answer as it did when it was registered; its slot was programmed anew. Use another token to sign in, delete the keys of this one, and register it again.</translation>
    </message>
    <message>
        <source>records-folder</source>
        <translation>The folder of the service's records is missing or not safe. Have root reinstall the package "vantro-standalone", then try again.</translation>
    </message>
    <message>
        <source>service-file-missing</source>
        <translation>A PAM service of the add-on is missing in "/etc/pam.d". Have root reinstall the package "vantro-standalone", then try again.</translation>
    </message>
    <message>
        <source>service-file-unusable</source>
        <translation>A PAM service of the add-on can't be changed safely as it is. The service's log says which and why: "journalctl -t vantro-standalone-service". Have root set it right, then try again.</translation>
    </message>
    <message>
        <source>module-missing</source>
        <translation>The login module "pam_vantro_standalone.so" is not installed. To demand a token without it would lock everybody out. Have root reinstall the package "vantro-standalone", then try again.</translation>
    </message>
    <message>
        <source>module-unusable</source>
        <translation>The login module "pam_vantro_standalone.so" can't be loaded. To demand a token without it would lock everybody out. Have root reinstall it, then try again.</translation>
    </message>
    <message>
        <source>jump</source>
        <translation>A jump in the computer's PAM configuration leads over the add-on's entry. The service's log says where: "journalctl -t vantro-standalone-service". Have root change that line, then try again.</translation>
    </message>
    <message>
        <source>includer-unreadable</source>
        <translation>A file of the computer's PAM configuration can't be read as PAM reads it, so nobody can tell what a change would do. The service's log says which: "journalctl -t vantro-standalone-service". Have root set it right, then try again.</translation>
    </message>
    <message>
        <source>no-key-registered</source>
        <translation>No user key or master key is registered that the service has a record of, so nobody could sign in. Register one; if there is one in the list, delete it first. Then try again.</translation>
    </message>
    <message>
        <source>document-unreadable</source>
        <translation>The service can't read the settings document. The service's log says why: "journalctl -t vantro-standalone-service". Have root set it right, then try again.</translation>
    </message>
    <message>
        <source>not-accepted</source>
        <translation>The service does not accept this request; it may be of another version than the tool. Have root reinstall the package "vantro-standalone", then start the tool again.</translation>
    </message>
    <message>
        <source>disk-full</source>
        <translation>The disk is full. Free some space, then try again.</translation>
    </message>
    <message>
        <source>write-failed</source>
        <translation>The service could not write a file. The service's log says which and why: "journalctl -t vantro-standalone-service". Have root set it right, then try again.</translation>
    </message>
    <message>
        <source>no-time</source>
        <translation>The service did not finish in time. Try again.</translation>
    </message>
    <message>
        <source>internal</source>
        <translation>An unexpected error occurred in the service. Try again; if it stays, the service's log says more: "journalctl -t vantro-standalone-service".</translation>
    </message>
    <message>
        <source>access-denied</source>
        <translation>The service serves administrators only, and you are none in this session. Your account must be a member of the group "sudo"; if it is not, have root run "adduser NAME sudo" with your account's name. Then sign out and sign in again: a new member counts only from then on.</translation>
    </message>
    <message>
        <source>service-missing</source>
        <translation>The Vantro Standalone service is not installed or does not start. Have root install the package "vantro-standalone", or find out why with "systemctl status com.vantro.Standalone1", then try again.</translation>
    </message>
    <message>
        <source>bus-missing</source>
        <translation>The system bus (D-Bus) can't be reached, and so neither can the Vantro Standalone service. Restart the computer, then start the tool again.</translation>
    </message>
</context>
<context>
    <name>TokenObstacle</name>
    <message>
        <source>serial_not_read</source>
        <translation>A token is plugged in, but its serial number could not be read.</translation>
    </message>
    <message>
        <source>another_pulled_out</source>
        <translation>A token is still plugged in, but which one is not known, since another was pulled out.</translation>
    </message>
    <message>
        <source>plug_in_again</source>
        <translation>Pull the token out and plug it in again.</translation>
    </message>
</context>
<context>
    <name>TabView</name>
    <message>
        <source>tab_settings</source>
        <translation>Settings</translation>
    </message>
    <message>
        <source>tab_user_keys</source>
        <translation>User Keys</translation>
    </message>
    <message>
        <source>tab_master_keys</source>
        <translation>Master Keys</translation>
    </message>
    <message>
        <source>tab_admin_keys</source>
        <translation>Admin Keys</translation>
    </message>
</context>
<context>
    <name>UserView</name>
    <message>
        <source>introduction</source>
        <translation>Tokens that open one account each:</translation>
    </message>
    <message>
        <source>table_name</source>
        <translation>User keys</translation>
    </message>
    <message>
        <source>empty_list</source>
        <translation>No token is assigned to an account yet. Plug in a YubiKey and choose Register…</translation>
    </message>
    <message>
        <source>register_button</source>
        <translation>&amp;Register…</translation>
    </message>
    <message>
        <source>register_button_name</source>
        <translation>Register a user key</translation>
    </message>
    <message>
        <source>delete_button</source>
        <translation>&amp;Delete…</translation>
    </message>
    <message>
        <source>delete_button_name</source>
        <translation>Delete user keys</translation>
    </message>
    <message>
        <source>column_account</source>
        <translation>Account</translation>
    </message>
    <message>
        <source>column_serial</source>
        <translation>Token serial</translation>
    </message>
</context>
<context>
    <name>MasterKeyView</name>
    <message>
        <source>introduction</source>
        <translation>Tokens that open every account:</translation>
    </message>
    <message>
        <source>table_name</source>
        <translation>Master keys</translation>
    </message>
    <message>
        <source>empty_list</source>
        <translation>There is no master key yet. Plug in a YubiKey and choose Register…</translation>
    </message>
    <message>
        <source>register_button</source>
        <translation>&amp;Register…</translation>
    </message>
    <message>
        <source>register_button_name</source>
        <translation>Register a master key</translation>
    </message>
    <message>
        <source>delete_button</source>
        <translation>&amp;Delete…</translation>
    </message>
    <message>
        <source>delete_button_name</source>
        <translation>Delete master keys</translation>
    </message>
    <message>
        <source>column_serial</source>
        <translation>Token serial</translation>
    </message>
</context>
<context>
    <name>AdminView</name>
    <message>
        <source>introduction</source>
        <translation>Tokens that open this tool:</translation>
    </message>
    <message>
        <source>table_name</source>
        <translation>Administrator keys</translation>
    </message>
    <message>
        <source>empty_list</source>
        <translation>There is no administrator key yet. Plug in a YubiKey and choose Register…</translation>
    </message>
    <message>
        <source>register_button</source>
        <translation>&amp;Register…</translation>
    </message>
    <message>
        <source>register_button_name</source>
        <translation>Register an administrator key</translation>
    </message>
    <message>
        <source>delete_button</source>
        <translation>&amp;Delete…</translation>
    </message>
    <message>
        <source>delete_button_name</source>
        <translation>Delete administrator keys</translation>
    </message>
    <message>
        <source>column_serial</source>
        <translation>Token serial</translation>
    </message>
    <message>
        <source>tool_login_auth</source>
        <translation>&amp;Ask for an administrator key at start</translation>
    </message>
    <message>
        <source>tool_login_auth_hint</source>
        <translation>To switch this on, register an administrator key first.</translation>
    </message>
</context>
<context>
    <name>RegistrationUserKeyView</name>
    <message>
        <source>heading</source>
        <translation>Register a token for an account</translation>
    </message>
    <message>
        <source>token_label</source>
        <translation>Token:</translation>
    </message>
    <message>
        <source>serial_description</source>
        <translation>Token serial</translation>
    </message>
    <message>
        <source>touch_hint</source>
        <translation>Touch the token if it blinks after you choose Register.</translation>
    </message>
    <message>
        <source>register_button</source>
        <translation>&amp;Register</translation>
    </message>
    <message>
        <source>cancel_button</source>
        <translation>&amp;Cancel</translation>
    </message>
    <message>
        <source>account_label</source>
        <translation>&amp;Account:</translation>
    </message>
    <message>
        <source>account_name</source>
        <translation>Account</translation>
    </message>
    <message>
        <source>full_name_description</source>
        <translation>Full name of the account</translation>
    </message>
</context>
<context>
    <name>RegistrationMasterKeyView</name>
    <message>
        <source>heading</source>
        <translation>Register a master key</translation>
    </message>
    <message>
        <source>token_label</source>
        <translation>Token:</translation>
    </message>
    <message>
        <source>serial_description</source>
        <translation>Token serial</translation>
    </message>
    <message>
        <source>touch_hint</source>
        <translation>Touch the token if it blinks after you choose Register.</translation>
    </message>
    <message>
        <source>register_button</source>
        <translation>&amp;Register</translation>
    </message>
    <message>
        <source>cancel_button</source>
        <translation>&amp;Cancel</translation>
    </message>
</context>
<context>
    <name>RegistrationAdminKeyView</name>
    <message>
        <source>heading</source>
        <translation>Register an administrator key</translation>
    </message>
    <message>
        <source>token_label</source>
        <translation>Token:</translation>
    </message>
    <message>
        <source>serial_description</source>
        <translation>Token serial</translation>
    </message>
    <message>
        <source>touch_hint</source>
        <translation>Touch the token if it blinks after you choose Register.</translation>
    </message>
    <message>
        <source>register_button</source>
        <translation>&amp;Register</translation>
    </message>
    <message>
        <source>cancel_button</source>
        <translation>&amp;Cancel</translation>
    </message>
</context>
<context>
    <name>DeletionUserKeyView</name>
    <message>
        <source>heading</source>
        <translation>Delete user keys</translation>
    </message>
    <message numerus="yes">
        <source>confirmation</source>
        <translation>
            <numerusform>Take this token away from its account?</numerusform>
            <numerusform>Take these %n tokens away from their accounts?</numerusform>
        </translation>
    </message>
    <message>
        <source>keys_description</source>
        <translation>Keys to delete</translation>
    </message>
    <message>
        <source>delete_button</source>
        <translation>&amp;Delete</translation>
    </message>
    <message>
        <source>cancel_button</source>
        <translation>&amp;Cancel</translation>
    </message>
</context>
<context>
    <name>DeletionMasterKeyView</name>
    <message>
        <source>heading</source>
        <translation>Delete master keys</translation>
    </message>
    <message numerus="yes">
        <source>confirmation</source>
        <translation>
            <numerusform>Should this token no longer open every account?</numerusform>
            <numerusform>Should these %n tokens no longer open every account?</numerusform>
        </translation>
    </message>
    <message>
        <source>keys_description</source>
        <translation>Keys to delete</translation>
    </message>
    <message>
        <source>delete_button</source>
        <translation>&amp;Delete</translation>
    </message>
    <message>
        <source>cancel_button</source>
        <translation>&amp;Cancel</translation>
    </message>
</context>
<context>
    <name>DeletionAdminKeyView</name>
    <message>
        <source>heading</source>
        <translation>Delete administrator keys</translation>
    </message>
    <message numerus="yes">
        <source>confirmation</source>
        <translation>
            <numerusform>Should this token no longer open this tool?</numerusform>
            <numerusform>Should these %n tokens no longer open this tool?</numerusform>
        </translation>
    </message>
    <message>
        <source>keys_description</source>
        <translation>Keys to delete</translation>
    </message>
    <message>
        <source>delete_button</source>
        <translation>&amp;Delete</translation>
    </message>
    <message>
        <source>cancel_button</source>
        <translation>&amp;Cancel</translation>
    </message>
</context>
<context>
    <name>SettingView</name>
    <message>
        <source>forced_yubikey_logon</source>
        <translation>&amp;Demand a token at sign-in and unlock</translation>
    </message>
    <message>
        <source>forced_yubikey_logon_hint</source>
        <translation>While this is on, signing in to this computer and unlocking it take a registered token as well as the password.</translation>
    </message>
    <message>
        <source>forced_yubikey_logon_warning</source>
        <translation>To switch this on, register a user key or a master key first. Without one nobody could sign in.</translation>
    </message>
    <message>
        <source>screen_lock</source>
        <translation>Screen &amp;lock</translation>
    </message>
    <message>
        <source>screen_lock_hint</source>
        <translation>Locks the screen when the token with which somebody signed in is pulled out.</translation>
    </message>
    <message>
        <source>module_missing</source>
        <translation>The login module is missing: %1</translation>
    </message>
    <message>
        <source>service_missing</source>
        <translation>A PAM service of the login add-on is missing: %1</translation>
    </message>
    <message>
        <source>reinstall</source>
        <translation>Reinstall the package; in a terminal:
sudo apt-get install --reinstall vantro-standalone</translation>
    </message>
    <message>
        <source>switch_off_until_then</source>
        <translation>Until then, switch "Demand a token" off: otherwise nobody may be able to sign in.</translation>
    </message>
    <message>
        <source>nobody_asks</source>
        <translation>No PAM service includes "authorization" yet, so that no sign-in asks for a token. To have every program that asks for a password ask for a token too, run in a terminal:
sudo pam-auth-update --enable vantro-standalone</translation>
    </message>
    <message>
        <source>demanded</source>
        <translation>A token is demanded by every program whose PAM service includes "authorization".</translation>
    </message>
    <message>
        <source>entry_not_demanding</source>
        <translation>The PAM service "authorization" does not demand a token. Switch "Demand a token" off and on again.</translation>
    </message>
    <message>
        <source>status_description</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>update_failed</source>
        <translation>The change was not made: the entries for signing in could not be written.</translation>
    </message>
    <message>
        <source>reset_failed</source>
        <translation>The last token was deleted, but the demand for a token could not be switched off.</translation>
    </message>
    <message>
        <source>reset_failed_switched_off</source>
        <translation>The last token was deleted. The entries for signing in could not be written; the demand for a token is off, as it was before.</translation>
    </message>
    <message>
        <source>written_in_part</source>
        <translation>Not all entries for signing in could be written.</translation>
    </message>
    <message>
        <source>entries_demand</source>
        <translation>A token is demanded now by: %1.</translation>
    </message>
    <message>
        <source>entries_demand_none</source>
        <translation>No entry demands a token now.</translation>
    </message>
    <message>
        <source>mend_switched_on</source>
        <translation>When the cause is mended, switch "Demand a token" off again.</translation>
    </message>
    <message>
        <source>mend_switched_off</source>
        <translation>Have a registered token at hand until the cause is mended and you have switched "Demand a token" on and off again.</translation>
    </message>
    <message>
        <source>mend_without_token</source>
        <translation>Register a token again, so that somebody can sign in; then switch "Demand a token" off.</translation>
    </message>
    <message>
        <source>check_service</source>
        <translation>Check that the Vantro Standalone service is installed and that you are an administrator, then try again.</translation>
    </message>
</context>
<context>
    <name>LoginAuthAlertView</name>
    <message>
        <source>heading</source>
        <translation>Sign in to Vantro Standalone</translation>
    </message>
    <message>
        <source>introduction</source>
        <translation>Plug in an administrator key and choose Sign In.</translation>
    </message>
    <message>
        <source>error_description</source>
        <translation>Result of the sign-in</translation>
    </message>
    <message>
        <source>touch_hint</source>
        <translation>Touch the token if it blinks.</translation>
    </message>
    <message>
        <source>asking</source>
        <translation>Asking the token. Touch it if it blinks…</translation>
    </message>
    <message>
        <source>authenticate_button</source>
        <translation>&amp;Sign In</translation>
    </message>
    <message>
        <source>quit_button</source>
        <translation>&amp;Quit</translation>
    </message>
</context>
<context>
    <name>MultipleConnectionsAlertView</name>
    <message>
        <source>heading</source>
        <translation>Several tokens are plugged in</translation>
    </message>
    <message>
        <source>message</source>
        <translation>Vantro Standalone works with one token at a time. Unplug all tokens to go on; this message then closes by itself.</translation>
    </message>
</context>
</TS>
