<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name>CommonMessage</name>
    <message>
        <source>ok</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>caution</source>
        <translation>Vorsicht</translation>
    </message>
    <message>
        <source>warning</source>
        <translation>Warnung</translation>
    </message>
    <message>
        <source>close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>no_registration_yubiKey</source>
        <translation>Nach dem Löschen gilt kein Token mehr für ein Konto, und die Token-Pflicht wird ausgeschaltet.</translation>
    </message>
    <message>
        <source>cr_failure_alert</source>
        <translation>Der Challenge-Response-Slot des Tokens ist nicht eingerichtet, das Token wurde abgezogen, oder der privilegierte Dienst antwortet nicht. Es wurde nichts registriert.

Prüfen Sie, ob das Token angeschlossen ist und ob einer seiner Slots für Challenge-Response (HMAC-SHA1) programmiert ist, und versuchen Sie es dann erneut. Wenn die Registrierung weiterhin fehlschlägt, prüfen Sie, ob der Vantro-Standalone-Dienst installiert ist.</translation>
    </message>
    <message>
        <source>unexpected_change_setting</source>
        <translation>Die Einstellungen konnten nicht gelesen werden, weil die Einstellungsdatei außerhalb dieses Programms geändert oder beschädigt wurde. Sie wurden zurückgesetzt: Es ist kein Token mehr registriert, und der Dienst wurde angewiesen, bei der Anmeldung keines mehr zu verlangen. Probieren Sie eine zweite Anmeldung aus, bevor Sie sich abmelden. Die beschädigte Datei wurde neben der neuen aufbewahrt; ihr Name endet auf „.invalid“.</translation>
    </message>
    <message>
        <source>install_after_alert_message</source>
        <translation>Bevor Sie beginnen</translation>
    </message>
    <message>
        <source>install_after_alert_info</source>
        <translation>Dieses Programm ändert, wie man sich an diesem Computer anmeldet. Es funktioniert nur für Administratoren:

• Ihr Konto muss zur Gruppe der Administratoren gehören. Falls nicht, führen Sie als root „adduser NAME sudo“ mit dem Namen Ihres Kontos aus, und melden Sie sich neu an.
• Der Vantro-Standalone-Dienst muss installiert sein.

Beim allerersten Start beendet sich das Programm, wenn Sie diese Meldung schließen. Starten Sie es danach noch einmal.</translation>
    </message>
    <message>
        <source>do_not_display</source>
        <translation>Diese Meldung nicht mehr anzeigen</translation>
    </message>
</context>
<context>
    <name>StartMessage</name>
    <message>
        <source>already_open_heading</source>
        <translation>Vantro Standalone ist bereits geöffnet</translation>
    </message>
    <message>
        <source>already_open_by</source>
        <translation>%1 hat das Programm an diesem Computer geöffnet. Zwei Fenster würden ihre Änderungen gegenseitig überschreiben, deshalb öffnet sich dieses nicht.

Bitten Sie %1, es zu schließen, und starten Sie es dann erneut.</translation>
    </message>
    <message>
        <source>already_open</source>
        <translation>Ein anderes Konto hat das Programm an diesem Computer geöffnet. Zwei Fenster würden ihre Änderungen gegenseitig überschreiben, deshalb öffnet sich dieses nicht.

Lassen Sie es dort schließen, und starten Sie es dann erneut.</translation>
    </message>
    <message>
        <source>document_unreadable_heading</source>
        <translation>Die Einstellungen können nicht gelesen werden</translation>
    </message>
    <message>
        <source>document_unreadable</source>
        <translation>Die Einstellungsdatei „%1“ kann nicht gelesen werden: %2. Es wurde nichts geändert, und das Programm wird geschlossen.

• Ihr Konto muss zur Gruppe der Administratoren gehören. Falls nicht, führen Sie als root „adduser NAME sudo“ mit dem Namen Ihres Kontos aus, und melden Sie sich neu an.
• Falls doch, sorgen Sie als root dafür, dass die Datei und ihr Ordner vorhanden und lesbar sind, und starten Sie das Programm dann erneut.</translation>
    </message>
    <message>
        <source>document_kept_aside</source>
        <translation>Die Einstellungsdatei „%1“ war vorhanden, konnte aber nicht gelesen werden. Sie wurde als „%2“ aufbewahrt, nichts darin ging verloren, und eine neue Datei ohne Token ist an ihre Stelle getreten. Das Programm wird geschlossen.

Um mit den alten Einstellungen fortzufahren, machen Sie diese Datei als root lesbar, prüfen Sie sie, und geben Sie ihr wieder den alten Namen. Um neu zu beginnen, starten Sie das Programm erneut.</translation>
    </message>
    <message>
        <source>document_not_written_heading</source>
        <translation>Änderungen werden nicht gespeichert</translation>
    </message>
    <message>
        <source>document_not_written</source>
        <translation>Die Einstellungsdatei „%1“ kann nicht geschrieben werden. Sie sehen die Einstellungen, aber was Sie jetzt ändern, geht verloren, wenn das Programm geschlossen wird.

Schließen Sie das Programm, sorgen Sie als root dafür, dass Ihr Konto in den Ordner der Datei schreiben darf und der Datenträger nicht voll ist, und starten Sie es dann erneut.</translation>
    </message>
    <message>
        <source>lock_unusable_heading</source>
        <translation>Vantro Standalone kann nicht geöffnet werden</translation>
    </message>
    <message>
        <source>lock_unusable</source>
        <translation>Die Datei „%1“ verhindert, dass zwei Fenster ihre Änderungen gegenseitig überschreiben, und sie kann nicht verwendet werden: %2. Deshalb öffnet sich das Programm nicht.

Lassen Sie root entfernen, was unter diesem Namen liegt, und starten Sie das Programm dann erneut.</translation>
    </message>
    <message>
        <source>document_not_kept_heading</source>
        <translation>Die beschädigten Einstellungen können nicht aufbewahrt werden</translation>
    </message>
    <message>
        <source>document_not_kept</source>
        <translation>Die Einstellungsdatei „%1“ wurde außerhalb dieses Programms geändert oder beschädigt, und sie kann weder kopiert noch umbenannt werden: %2. Es wurde nichts geändert, und das Programm wird geschlossen.

Sorgen Sie als root dafür, dass Ihr Konto in den Ordner der Datei schreiben darf und der Datenträger nicht voll ist, und starten Sie das Programm dann erneut.</translation>
    </message>
    <message>
        <source>defaults_not_stored_heading</source>
        <translation>Dieser Start kann nicht vermerkt werden</translation>
    </message>
    <message>
        <source>defaults_not_stored</source>
        <translation>Die Datei „%1“ kann nicht geschrieben werden. Deshalb hält das Programm jeden Start für den ersten nach der Installation und schließt sich.

Sorgen Sie dafür, dass Sie in diesen Ordner schreiben dürfen und der Datenträger nicht voll ist, und starten Sie das Programm dann erneut.</translation>
    </message>
</context>
<context>
    <name>UserViewMessage</name>
    <message>
        <source>yubiKey_is_not_connected</source>
        <translation>Es ist kein Token angeschlossen. Schließen Sie den YubiKey an, den Sie registrieren möchten.</translation>
    </message>
    <message>
        <source>already_allocated_key</source>
        <translation>Dieses Token ist dem gewählten Konto bereits zugeordnet.</translation>
    </message>
    <message>
        <source>not_selected_for_deletion</source>
        <translation>Es ist kein Benutzerschlüssel ausgewählt. Schließen Sie diesen Dialog, und wählen Sie in der Liste die Schlüssel aus, die Sie löschen möchten.</translation>
    </message>
</context>
<context>
    <name>MasterKeyViewMessage</name>
    <message>
        <source>yubiKey_is_not_connected</source>
        <translation>Es ist kein Token angeschlossen. Schließen Sie den YubiKey an, der ein Hauptschlüssel werden soll.</translation>
    </message>
    <message>
        <source>already_allocated_key</source>
        <translation>Dieses Token ist bereits ein Hauptschlüssel.</translation>
    </message>
    <message>
        <source>not_selected_for_deletion</source>
        <translation>Es ist kein Hauptschlüssel ausgewählt. Schließen Sie diesen Dialog, und wählen Sie in der Liste die Schlüssel aus, die Sie löschen möchten.</translation>
    </message>
</context>
<context>
    <name>AdminViewMessage</name>
    <message>
        <source>yubiKey_is_not_connected</source>
        <translation>Es ist kein Token angeschlossen. Schließen Sie den YubiKey an, der ein Administratorschlüssel werden soll.</translation>
    </message>
    <message>
        <source>already_allocated_key</source>
        <translation>Dieses Token ist bereits ein Administratorschlüssel.</translation>
    </message>
    <message>
        <source>not_selected_for_deletion</source>
        <translation>Es ist kein Administratorschlüssel ausgewählt. Schließen Sie diesen Dialog, und wählen Sie in der Liste die Schlüssel aus, die Sie löschen möchten.</translation>
    </message>
    <message>
        <source>no_registration_admin_yubiKey</source>
        <translation>Nach dem Löschen gibt es keinen Administratorschlüssel mehr: Das Programm verlangt beim Start kein Token mehr, und wer es starten kann, kann seine Einstellungen ändern.</translation>
    </message>
</context>
<context>
    <name>LoginAuthAlertMessage</name>
    <message>
        <source>not_connected_yubikey</source>
        <translation>Es ist kein Token angeschlossen. Schließen Sie einen Administratorschlüssel an, und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>not_admin_key</source>
        <translation>Dieses Token ist kein Administratorschlüssel. Schließen Sie einen Administratorschlüssel an, und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>auth_failure</source>
        <translation>Das Token konnte nicht geprüft werden. Schließen Sie einen Administratorschlüssel und kein weiteres Token an, berühren Sie ihn, wenn er blinkt, und versuchen Sie es erneut.</translation>
    </message>
</context>
<context>
    <name>ServiceFailure</name>
    <message>
        <source>no-token</source>
        <translation>Der Dienst hat kein Token gefunden. Schließen Sie das Token an, und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>no-token-with-serial</source>
        <translation>Der Dienst hat kein Token mit dieser Seriennummer gefunden: Es wurde abgezogen oder vertauscht. Schließen Sie es an, und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>no-keyboard-interface</source>
        <translation>Das Token bietet keine OTP-Anwendung an, zu der Challenge-Response gehört. Schalten Sie diese mit dem Konfigurationsprogramm des Tokens ein, und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>token-busy</source>
        <translation>Das Token ist mit einer anderen Anfrage beschäftigt. Versuchen Sie es gleich noch einmal.</translation>
    </message>
    <message>
        <source>token-gone</source>
        <translation>Das Token wurde während der Abfrage abgezogen. Schließen Sie es an, lassen Sie es angeschlossen, und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>device-not-allowed</source>
        <translation>Der Dienst darf das Gerät des Tokens nicht öffnen. Führen Sie als root „systemctl restart com.vantro.Standalone1“ aus, und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>transfer-failed</source>
        <translation>Die Verbindung zum Token wurde gestört. Schließen Sie das Token an einen anderen USB-Anschluss an, und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>no-answer</source>
        <translation>Das Token hat nicht rechtzeitig geantwortet. Schließen Sie es an einen anderen USB-Anschluss an, und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>bad-answer</source>
        <translation>Die Antwort des Tokens war beschädigt. Schließen Sie es an einen anderen USB-Anschluss an, und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>slot-not-programmed</source>
        <translation>Kein Slot des Tokens ist für Challenge-Response programmiert. Programmieren Sie einen davon (HMAC-SHA1), und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>not-touched</source>
        <translation>Das Token wurde nicht rechtzeitig berührt. Versuchen Sie es erneut, und berühren Sie es, sobald es blinkt.</translation>
    </message>
    <message>
        <source>claims-another</source>
        <translation>Ein Token mit dieser Seriennummer ist bereits registriert, und dieses hier antwortet nicht wie jenes. Wenn es dasselbe ist und sein Slot neu programmiert wurde, löschen Sie zuerst alle seine Schlüssel, und versuchen Sie es erneut. Andernfalls verwenden Sie es nicht: Es gibt sich für ein anderes aus.</translation>
    </message>
    <message>
        <source>no-record</source>
        <translation>Der Dienst hat keine Aufzeichnung zu diesem Token. Melden Sie sich mit einem anderen Token an, löschen Sie die Schlüssel von diesem, und registrieren Sie es neu.</translation>
    </message>
    <message>
        <source>record-unusable</source>
        <translation>Die Aufzeichnung des Dienstes zu diesem Token ist beschädigt oder nicht sicher. Melden Sie sich mit einem anderen Token an, löschen Sie die Schlüssel von diesem, und registrieren Sie es neu.</translation>
    </message>
    <message>
        <source>wrong-response</source>
        <translation>Das Token antwortet nicht wie bei seiner Registrierung; sein Slot wurde neu programmiert. Melden Sie sich mit einem anderen Token an, löschen Sie die Schlüssel von diesem, und registrieren Sie es neu.</translation>
    </message>
    <message>
        <source>records-folder</source>
        <translation>Der Ordner mit den Aufzeichnungen des Dienstes fehlt oder ist nicht sicher. Installieren Sie als root das Paket „vantro-standalone“ neu, und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>service-file-missing</source>
        <translation>Ein PAM-Dienst der Erweiterung fehlt in „/etc/pam.d“. Installieren Sie als root das Paket „vantro-standalone“ neu, und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>service-file-unusable</source>
        <translation>Ein PAM-Dienst der Erweiterung kann so, wie er ist, nicht sicher geändert werden. Das Protokoll des Dienstes nennt ihn und den Grund: „journalctl -t vantro-standalone-service“. Berichtigen Sie ihn als root, und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>module-missing</source>
        <translation>Das Anmeldemodul „pam_vantro_standalone.so“ ist nicht installiert. Eine Token-Pflicht ohne das Modul würde alle aussperren. Installieren Sie als root das Paket „vantro-standalone“ neu, und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>module-unusable</source>
        <translation>Das Anmeldemodul „pam_vantro_standalone.so“ kann nicht geladen werden. Eine Token-Pflicht ohne das Modul würde alle aussperren. Installieren Sie es als root neu, und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>jump</source>
        <translation>Ein Sprung in der PAM-Konfiguration des Computers führt über den Eintrag der Erweiterung hinweg. Das Protokoll des Dienstes nennt die Stelle: „journalctl -t vantro-standalone-service“. Ändern Sie die Zeile als root, und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>includer-unreadable</source>
        <translation>Eine Datei der PAM-Konfiguration des Computers kann nicht so gelesen werden, wie PAM sie liest; was eine Änderung bewirken würde, ist deshalb ungewiss. Das Protokoll des Dienstes nennt sie: „journalctl -t vantro-standalone-service“. Berichtigen Sie die Datei als root, und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>no-key-registered</source>
        <translation>Es ist kein Benutzer- oder Hauptschlüssel registriert, zu dem der Dienst eine Aufzeichnung hat; niemand könnte sich anmelden. Registrieren Sie einen; wenn schon einer in der Liste steht, löschen Sie ihn zuerst. Versuchen Sie es dann erneut.</translation>
    </message>
    <message>
        <source>document-unreadable</source>
        <translation>Der Dienst kann die Einstellungsdatei nicht lesen. Das Protokoll des Dienstes nennt den Grund: „journalctl -t vantro-standalone-service“. Bringen Sie sie als root in Ordnung, und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>not-accepted</source>
        <translation>Der Dienst nimmt diese Anfrage nicht an; vielleicht hat er eine andere Version als das Programm. Installieren Sie als root das Paket „vantro-standalone“ neu, und starten Sie das Programm erneut.</translation>
    </message>
    <message>
        <source>disk-full</source>
        <translation>Der Datenträger ist voll. Schaffen Sie Platz, und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>write-failed</source>
        <translation>Der Dienst konnte eine Datei nicht schreiben. Das Protokoll des Dienstes nennt sie und den Grund: „journalctl -t vantro-standalone-service“. Beheben Sie ihn als root, und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>no-time</source>
        <translation>Der Dienst wurde nicht rechtzeitig fertig. Versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>internal</source>
        <translation>Im Dienst ist ein unerwarteter Fehler aufgetreten. Versuchen Sie es erneut; bleibt er bestehen, sagt das Protokoll des Dienstes mehr: „journalctl -t vantro-standalone-service“.</translation>
    </message>
    <message>
        <source>access-denied</source>
        <translation>Der Dienst steht nur Administratoren zur Verfügung, und in dieser Sitzung sind Sie keiner. Ihr Konto muss zur Gruppe „sudo“ gehören; falls nicht, führen Sie als root „adduser NAME sudo“ mit dem Namen Ihres Kontos aus. Melden Sie sich dann ab und wieder an: Ein neues Mitglied gilt erst von da an.</translation>
    </message>
    <message>
        <source>service-missing</source>
        <translation>Der Vantro-Standalone-Dienst ist nicht installiert oder startet nicht. Installieren Sie als root das Paket „vantro-standalone“, oder suchen Sie den Grund mit „systemctl status com.vantro.Standalone1“, und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>bus-missing</source>
        <translation>Der Systembus (D-Bus) ist nicht erreichbar und damit auch nicht der Vantro-Standalone-Dienst. Starten Sie den Computer neu, und starten Sie dann das Programm erneut.</translation>
    </message>
</context>
<context>
    <name>TokenObstacle</name>
    <message>
        <source>serial_not_read</source>
        <translation>Ein Token ist angeschlossen, aber seine Seriennummer konnte nicht gelesen werden.</translation>
    </message>
    <message>
        <source>another_pulled_out</source>
        <translation>Ein Token ist noch angeschlossen; welches, ist nicht bekannt, weil ein anderes abgezogen wurde.</translation>
    </message>
    <message>
        <source>plug_in_again</source>
        <translation>Ziehen Sie das Token ab, und schließen Sie es wieder an.</translation>
    </message>
</context>
<context>
    <name>TabView</name>
    <message>
        <source>tab_settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>tab_user_keys</source>
        <translation>Benutzer</translation>
    </message>
    <message>
        <source>tab_master_keys</source>
        <translation>Hauptschlüssel</translation>
    </message>
    <message>
        <source>tab_admin_keys</source>
        <translation>Administrator</translation>
    </message>
</context>
<context>
    <name>UserView</name>
    <message>
        <source>introduction</source>
        <translation>Token, die je für ein Konto gelten:</translation>
    </message>
    <message>
        <source>table_name</source>
        <translation>Benutzerschlüssel</translation>
    </message>
    <message>
        <source>empty_list</source>
        <translation>Noch ist keinem Konto ein Token zugeordnet. Schließen Sie einen YubiKey an, und wählen Sie „Registrieren …“.</translation>
    </message>
    <message>
        <source>register_button</source>
        <translation>&amp;Registrieren …</translation>
    </message>
    <message>
        <source>register_button_name</source>
        <translation>Benutzerschlüssel registrieren</translation>
    </message>
    <message>
        <source>delete_button</source>
        <translation>&amp;Löschen …</translation>
    </message>
    <message>
        <source>delete_button_name</source>
        <translation>Benutzerschlüssel löschen</translation>
    </message>
    <message>
        <source>column_account</source>
        <translation>Konto</translation>
    </message>
    <message>
        <source>column_serial</source>
        <translation>Seriennummer</translation>
    </message>
</context>
<context>
    <name>MasterKeyView</name>
    <message>
        <source>introduction</source>
        <translation>Token, die für alle Konten gelten:</translation>
    </message>
    <message>
        <source>table_name</source>
        <translation>Hauptschlüssel</translation>
    </message>
    <message>
        <source>empty_list</source>
        <translation>Es gibt noch keinen Hauptschlüssel. Schließen Sie einen YubiKey an, und wählen Sie „Registrieren …“.</translation>
    </message>
    <message>
        <source>register_button</source>
        <translation>&amp;Registrieren …</translation>
    </message>
    <message>
        <source>register_button_name</source>
        <translation>Hauptschlüssel registrieren</translation>
    </message>
    <message>
        <source>delete_button</source>
        <translation>&amp;Löschen …</translation>
    </message>
    <message>
        <source>delete_button_name</source>
        <translation>Hauptschlüssel löschen</translation>
    </message>
    <message>
        <source>column_serial</source>
        <translation>Seriennummer</translation>
    </message>
</context>
<context>
    <name>AdminView</name>
    <message>
        <source>introduction</source>
        <translation>Token, die für dieses Programm gelten:</translation>
    </message>
    <message>
        <source>table_name</source>
        <translation>Administratorschlüssel</translation>
    </message>
    <message>
        <source>empty_list</source>
        <translation>Es gibt noch keinen Administratorschlüssel. Schließen Sie einen YubiKey an, und wählen Sie „Registrieren …“.</translation>
    </message>
    <message>
        <source>register_button</source>
        <translation>&amp;Registrieren …</translation>
    </message>
    <message>
        <source>register_button_name</source>
        <translation>Administratorschlüssel registrieren</translation>
    </message>
    <message>
        <source>delete_button</source>
        <translation>&amp;Löschen …</translation>
    </message>
    <message>
        <source>delete_button_name</source>
        <translation>Administratorschlüssel löschen</translation>
    </message>
    <message>
        <source>column_serial</source>
        <translation>Seriennummer</translation>
    </message>
    <message>
        <source>tool_login_auth</source>
        <translation>Anmeldung beim &amp;Start verlangen</translation>
    </message>
    <message>
        <source>tool_login_auth_hint</source>
        <translation>Um diese Option einzuschalten, registrieren Sie zuerst einen Administratorschlüssel.</translation>
    </message>
</context>
<context>
    <name>RegistrationUserKeyView</name>
    <message>
        <source>heading</source>
        <translation>Token für ein Konto registrieren</translation>
    </message>
    <message>
        <source>token_label</source>
        <translation>Token:</translation>
    </message>
    <message>
        <source>serial_description</source>
        <translation>Seriennummer des Tokens</translation>
    </message>
    <message>
        <source>touch_hint</source>
        <translation>Berühren Sie das Token, wenn es nach „Registrieren“ blinkt.</translation>
    </message>
    <message>
        <source>register_button</source>
        <translation>&amp;Registrieren</translation>
    </message>
    <message>
        <source>cancel_button</source>
        <translation>&amp;Abbrechen</translation>
    </message>
    <message>
        <source>account_label</source>
        <translation>&amp;Konto:</translation>
    </message>
    <message>
        <source>account_name</source>
        <translation>Konto</translation>
    </message>
    <message>
        <source>full_name_description</source>
        <translation>Vollständiger Name des Kontos</translation>
    </message>
</context>
<context>
    <name>RegistrationMasterKeyView</name>
    <message>
        <source>heading</source>
        <translation>Hauptschlüssel registrieren</translation>
    </message>
    <message>
        <source>token_label</source>
        <translation>Token:</translation>
    </message>
    <message>
        <source>serial_description</source>
        <translation>Seriennummer des Tokens</translation>
    </message>
    <message>
        <source>touch_hint</source>
        <translation>Berühren Sie das Token, wenn es nach „Registrieren“ blinkt.</translation>
    </message>
    <message>
        <source>register_button</source>
        <translation>&amp;Registrieren</translation>
    </message>
    <message>
        <source>cancel_button</source>
        <translation>&amp;Abbrechen</translation>
    </message>
</context>
<context>
    <name>RegistrationAdminKeyView</name>
    <message>
        <source>heading</source>
        <translation>Administratorschlüssel registrieren</translation>
    </message>
    <message>
        <source>token_label</source>
        <translation>Token:</translation>
    </message>
    <message>
        <source>serial_description</source>
        <translation>Seriennummer des Tokens</translation>
    </message>
    <message>
        <source>touch_hint</source>
        <translation>Berühren Sie das Token, wenn es nach „Registrieren“ blinkt.</translation>
    </message>
    <message>
        <source>register_button</source>
        <translation>&amp;Registrieren</translation>
    </message>
    <message>
        <source>cancel_button</source>
        <translation>&amp;Abbrechen</translation>
    </message>
</context>
<context>
    <name>DeletionUserKeyView</name>
    <message>
        <source>heading</source>
        <translation>Benutzerschlüssel löschen</translation>
    </message>
    <message numerus="yes">
        <source>confirmation</source>
        <translation>
            <numerusform>Die Zuordnung dieses Tokens zu seinem Konto aufheben?</numerusform>
            <numerusform>Die Zuordnung dieser %n Token zu ihren Konten aufheben?</numerusform>
        </translation>
    </message>
    <message>
        <source>keys_description</source>
        <translation>Zu löschende Schlüssel</translation>
    </message>
    <message>
        <source>delete_button</source>
        <translation>&amp;Löschen</translation>
    </message>
    <message>
        <source>cancel_button</source>
        <translation>&amp;Abbrechen</translation>
    </message>
</context>
<context>
    <name>DeletionMasterKeyView</name>
    <message>
        <source>heading</source>
        <translation>Hauptschlüssel löschen</translation>
    </message>
    <message numerus="yes">
        <source>confirmation</source>
        <translation>
            <numerusform>Soll dieses Token künftig nicht mehr für alle Konten gelten?</numerusform>
            <numerusform>Sollen diese %n Token künftig nicht mehr für alle Konten gelten?</numerusform>
        </translation>
    </message>
    <message>
        <source>keys_description</source>
        <translation>Zu löschende Schlüssel</translation>
    </message>
    <message>
        <source>delete_button</source>
        <translation>&amp;Löschen</translation>
    </message>
    <message>
        <source>cancel_button</source>
        <translation>&amp;Abbrechen</translation>
    </message>
</context>
<context>
    <name>DeletionAdminKeyView</name>
    <message>
        <source>heading</source>
        <translation>Administratorschlüssel löschen</translation>
    </message>
    <message numerus="yes">
        <source>confirmation</source>
        <translation>
            <numerusform>Soll dieses Token künftig nicht mehr für dieses Programm gelten?</numerusform>
            <numerusform>Sollen diese %n Token künftig nicht mehr für dieses Programm gelten?</numerusform>
        </translation>
    </message>
    <message>
        <source>keys_description</source>
        <translation>Zu löschende Schlüssel</translation>
    </message>
    <message>
        <source>delete_button</source>
        <translation>&amp;Löschen</translation>
    </message>
    <message>
        <source>cancel_button</source>
        <translation>&amp;Abbrechen</translation>
    </message>
</context>
<context>
    <name>SettingView</name>
    <message>
        <source>forced_yubikey_logon</source>
        <translation>&amp;Token-Pflicht bei der Anmeldung</translation>
    </message>
    <message>
        <source>forced_yubikey_logon_hint</source>
        <translation>Solange diese Option eingeschaltet ist, braucht man zum Anmelden an diesem Computer und zum Entsperren neben dem Passwort ein registriertes Token.</translation>
    </message>
    <message>
        <source>forced_yubikey_logon_warning</source>
        <translation>Um diese Option einzuschalten, registrieren Sie zuerst einen Benutzer- oder Hauptschlüssel. Sonst könnte sich niemand mehr anmelden.</translation>
    </message>
    <message>
        <source>screen_lock</source>
        <translation>&amp;Bildschirmsperre</translation>
    </message>
    <message>
        <source>screen_lock_hint</source>
        <translation>Sperrt den Bildschirm, wenn das Token abgezogen wird, mit dem sich jemand angemeldet hat.</translation>
    </message>
    <message>
        <source>module_missing</source>
        <translation>Das Anmeldemodul fehlt: %1</translation>
    </message>
    <message>
        <source>service_missing</source>
        <translation>Ein PAM-Dienst der Anmelde-Erweiterung fehlt: %1</translation>
    </message>
    <message>
        <source>reinstall</source>
        <translation>Installieren Sie das Paket neu; im Terminal:
sudo apt-get install --reinstall vantro-standalone</translation>
    </message>
    <message>
        <source>switch_off_until_then</source>
        <translation>Schalten Sie die Token-Pflicht bis dahin aus: Sonst kann sich vielleicht niemand mehr anmelden.</translation>
    </message>
    <message>
        <source>nobody_asks</source>
        <translation>Noch schließt kein PAM-Dienst „authorization“ ein; deshalb wird bei keiner Anmeldung nach einem Token gefragt. Damit jedes Programm, das ein Passwort verlangt, auch ein Token verlangt, geben Sie im Terminal ein:
sudo pam-auth-update --enable vantro-standalone</translation>
    </message>
    <message>
        <source>demanded</source>
        <translation>Die Token-Pflicht gilt für jedes Programm, dessen PAM-Dienst „authorization“ einschließt.</translation>
    </message>
    <message>
        <source>entry_not_demanding</source>
        <translation>Der PAM-Dienst „authorization“ verlangt kein Token. Schalten Sie die Token-Pflicht aus und wieder ein.</translation>
    </message>
    <message>
        <source>status_description</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>update_failed</source>
        <translation>Die Änderung wurde nicht vorgenommen: Die Einträge für die Anmeldung konnten nicht geschrieben werden.</translation>
    </message>
    <message>
        <source>reset_failed</source>
        <translation>Das letzte Token wurde gelöscht, aber die Token-Pflicht konnte nicht ausgeschaltet werden.</translation>
    </message>
    <message>
        <source>reset_failed_switched_off</source>
        <translation>Das letzte Token wurde gelöscht. Die Einträge für die Anmeldung konnten nicht geschrieben werden; die Token-Pflicht ist wie zuvor ausgeschaltet.</translation>
    </message>
    <message>
        <source>written_in_part</source>
        <translation>Nicht alle Einträge für die Anmeldung konnten geschrieben werden.</translation>
    </message>
    <message>
        <source>entries_demand</source>
        <translation>Ein Token verlangen jetzt: %1.</translation>
    </message>
    <message>
        <source>entries_demand_none</source>
        <translation>Kein Eintrag verlangt jetzt ein Token.</translation>
    </message>
    <message>
        <source>mend_switched_on</source>
        <translation>Wenn die Ursache behoben ist, schalten Sie die Token-Pflicht erneut aus.</translation>
    </message>
    <message>
        <source>mend_switched_off</source>
        <translation>Halten Sie ein registriertes Token bereit, bis die Ursache behoben ist und Sie die Token-Pflicht ein- und wieder ausgeschaltet haben.</translation>
    </message>
    <message>
        <source>mend_without_token</source>
        <translation>Registrieren Sie wieder ein Token, damit sich jemand anmelden kann; schalten Sie dann die Token-Pflicht aus.</translation>
    </message>
    <message>
        <source>check_service</source>
        <translation>Prüfen Sie, ob der Vantro-Standalone-Dienst installiert ist und ob Sie Administrator sind, und versuchen Sie es dann erneut.</translation>
    </message>
</context>
<context>
    <name>LoginAuthAlertView</name>
    <message>
        <source>heading</source>
        <translation>Bei Vantro Standalone anmelden</translation>
    </message>
    <message>
        <source>introduction</source>
        <translation>Schließen Sie einen Administratorschlüssel an, und wählen Sie „Anmelden“.</translation>
    </message>
    <message>
        <source>error_description</source>
        <translation>Ergebnis der Anmeldung</translation>
    </message>
    <message>
        <source>touch_hint</source>
        <translation>Berühren Sie das Token, wenn es blinkt.</translation>
    </message>
    <message>
        <source>asking</source>
        <translation>Das Token wird abgefragt. Berühren Sie es, wenn es blinkt …</translation>
    </message>
    <message>
        <source>authenticate_button</source>
        <translation>&amp;Anmelden</translation>
    </message>
    <message>
        <source>quit_button</source>
        <translation>&amp;Beenden</translation>
    </message>
</context>
<context>
    <name>MultipleConnectionsAlertView</name>
    <message>
        <source>heading</source>
        <translation>Mehrere Token sind angeschlossen</translation>
    </message>
    <message>
        <source>message</source>
        <translation>Vantro Standalone arbeitet mit jeweils nur einem Token. Ziehen Sie alle Token ab, um fortzufahren; diese Meldung schließt sich dann von selbst.</translation>
    </message>
</context>
</TS>
